-- Takes the night's rows from standard input. A night that is loaded twice is the same night. Rows
-- without a student are schools that could not be read, those without a mission students: what is
-- known of them stays. Two of one name in one class cannot be told apart here and are one row.
BEGIN;
CREATE TEMP TABLE night (
  school text, teacher text, class text, student text,
  current_mission int, previous_mission int, vocab_level int, lessons_done int, last_work timestamp
) ON COMMIT DROP;
\copy night FROM pstdin WITH (FORMAT csv, HEADER)
DELETE FROM night WHERE student IS NULL OR current_mission IS NULL;
UPDATE night SET teacher = coalesce(teacher, '');
DELETE FROM night AS one USING night AS other
WHERE (one.school, one.teacher, one.class, one.student)
    = (other.school, other.teacher, other.class, other.student) AND one.ctid < other.ctid;
INSERT INTO student SELECT *, current_date FROM night
ON CONFLICT (school, teacher, class, student) DO UPDATE SET
  current_mission = excluded.current_mission, previous_mission = excluded.previous_mission,
  vocab_level = excluded.vocab_level, lessons_done = excluded.lessons_done,
  last_work = excluded.last_work, read_on = excluded.read_on;
INSERT INTO day SELECT current_date, school, teacher, class, student, current_mission, lessons_done
FROM night
ON CONFLICT (day, school, teacher, class, student) DO UPDATE SET
  current_mission = excluded.current_mission, lessons_done = excluded.lessons_done;
COMMIT;
