-- How far is each school?
SELECT school, count(*) AS students,
       percentile_disc(0.5) WITHIN GROUP (ORDER BY current_mission) AS median
FROM student WHERE read_on = current_date GROUP BY school ORDER BY school;

-- Who has not worked for two weeks, or never?
SELECT school, class, student, last_work::date FROM student
WHERE read_on = current_date AND coalesce(last_work, '-infinity') < now() - interval '14 days'
ORDER BY school, class, student LIMIT 5;

-- By how many missions has each class moved on since the first day that is kept?
SELECT now.school, now.class, sum(now.current_mission - before.current_mission) AS missions
FROM day AS now JOIN day AS before USING (school, teacher, class, student)
WHERE now.day = (SELECT max(day) FROM day) AND before.day = (SELECT min(day) FROM day)
GROUP BY now.school, now.class ORDER BY now.school, now.class LIMIT 5;
