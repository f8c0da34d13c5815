-- The modes beside table, csv and json.
UPDATE PSN_TBL SET PSN_NAME = 'O''Hara | "Sons"' WHERE PSN_ID = 3

-- A box, for people.
.mode box
SELECT PSN_ID, PSN_NAME, PSN_KANA FROM PSN_TBL WHERE PSN_ID < 4
SELECT COUNT(*) FROM PSN_TBL
SELECT PSN_ID, PSN_NAME FROM PSN_TBL WHERE PSN_ID = 99

-- A Markdown table: bars are escaped.
.mode markdown
SELECT PSN_ID, PSN_NAME FROM PSN_TBL WHERE PSN_ID < 4
SELECT PSN_ID, PSN_NAME FROM PSN_TBL WHERE PSN_ID = 99

-- One value a line.
.mode line
SELECT PSN_ID, PSN_NAME FROM PSN_TBL WHERE PSN_ID IN (2,3)
SELECT PSN_ID, PSN_NAME FROM PSN_TBL WHERE PSN_ID = 99

-- One JSON object a line.
.mode jsonl
SELECT PSN_ID, PSN_NAME FROM PSN_TBL WHERE PSN_ID < 4
SELECT PSN_ID, PSN_NAME FROM PSN_TBL WHERE PSN_ID = 99

-- Statements that the shell reads again.
.mode insert
SELECT PSN_ID, PSN_NAME FROM PSN_TBL WHERE PSN_ID < 4
.schema TMP_ID_TBL

-- A change says ok to people alone.
UPDATE PSN_TBL SET INTEG_ID = 7 WHERE PSN_ID = 3
.mode box
UPDATE PSN_TBL SET INTEG_ID = 7 WHERE PSN_ID = 3
