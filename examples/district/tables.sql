-- Where each student stands, and a row a day for each, of all schools.
SET client_min_messages = warning;
CREATE TABLE IF NOT EXISTS student (
  school text, teacher text, class text, student text,
  current_mission int, previous_mission int, vocab_level int, lessons_done int, last_work timestamp,
  read_on date NOT NULL,
  PRIMARY KEY (school, teacher, class, student)
);
CREATE TABLE IF NOT EXISTS day (
  day date, school text, teacher text, class text, student text, current_mission int, lessons_done int,
  PRIMARY KEY (day, school, teacher, class, student)
);
