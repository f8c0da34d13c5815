-- The shell's settings, where answers go, and files of lines.
.trace off
.open --sample
.show
.mode markdown
.headers off
SELECT PSN_ID, PSN_NAME FROM PSN_TBL WHERE PSN_ID < 3
.mode tabs
SELECT PSN_ID, PSN_NAME FROM PSN_TBL WHERE PSN_ID < 3
.headers on
SELECT PSN_ID, PSN_NAME FROM PSN_TBL WHERE PSN_ID < 3
.mode list
SELECT PSN_ID, PSN_NAME FROM PSN_TBL WHERE PSN_ID < 3
.headers maybe

-- Changes are told where people read, or where they are asked for.
UPDATE PSN_TBL SET INTEG_ID = 7 WHERE PSN_ID = 3
.changes on
UPDATE PSN_TBL SET INTEG_ID = 7 WHERE PSN_ID = 3
.mode table
.changes off
UPDATE PSN_TBL SET INTEG_ID = 7 WHERE PSN_ID = 3

-- One answer goes to a file, then the next ones are printed; a file of statements is read back.
.mode insert
.once "two people.sql"
SELECT PSN_ID, PSN_NAME FROM PSN_TBL WHERE PSN_ID < 3
.mode csv
SELECT COUNT(*) FROM PSN_TBL
DROP TABLE PSN_TBL
.read 'two people.sql'
SELECT PSN_ID, PSN_NAME FROM PSN_TBL

-- All answers go to a file until that ends; errors do not.
.mode insert
.output answers.sql
SELECT PSN_ID, PSN_NAME FROM PSN_TBL WHERE PSN_ID = 2
SELECT NOTHING FROM PSN_TBL
SELECT PSN_ID, PSN_NAME FROM PSN_TBL WHERE PSN_ID = 1
.output
.mode csv
DROP TABLE PSN_TBL
.read answers.sql
SELECT PSN_ID, PSN_NAME FROM PSN_TBL

-- A refused statement is no answer: the next one is.
.mode insert
.once answers.sql
SELECT NOTHING FROM PSN_TBL
SELECT PSN_ID FROM PSN_TBL WHERE PSN_ID = 1
.mode csv
DROP TABLE PSN_TBL
.read answers.sql
SELECT PSN_ID FROM PSN_TBL

-- Files that cannot be written or read.
.output /nowhere/answers.txt
.once .
.output /dev/full
SELECT COUNT(*) FROM PSN_TBL
SELECT COUNT(*) FROM PSN_TBL
.read missing.sql
.read .
-- Another prompt.
.prompt "device> " '   and> '
SELECT COUNT(*)
FROM PSN_TBL;
.prompt one two three
.prompt "one
.prompt

-- Another device.
.mode table
.open missing.img
.open --new device.img
.open --new device.img
INSERT INTO PSN_TBL (PSN_ID, PSN_NAME) VALUES (1, 'Sato')
.open --sample
.open "device.img"
.show
SELECT PSN_NAME FROM PSN_TBL
