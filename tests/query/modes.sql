-- The three ways to print an answer.

-- A table: numbers to the right, Japanese characters two columns wide.
SELECT PSN_ID, PSN_NAME, PSN_KANA FROM PSN_TBL WHERE PSN_ID < 4
SELECT COUNT(*) FROM PSN_TBL
SELECT PSN_ID, PSN_NAME FROM PSN_TBL WHERE PSN_ID = 99
UPDATE PSN_TBL SET PSN_NAME = 'He said "so, what"' WHERE PSN_ID = 3

-- Comma-separated values: quotes where they are needed.
.mode csv
SELECT PSN_ID, PSN_NAME, PSN_KANA FROM PSN_TBL WHERE PSN_ID < 4
SELECT COUNT(*) FROM PSN_TBL
SELECT PSN_ID, PSN_NAME FROM PSN_TBL WHERE PSN_ID = 99
UPDATE PSN_TBL SET PSN_NAME = 'Anna' WHERE PSN_ID = 3

-- JSON: an array of objects.
.mode json
SELECT PSN_ID, PSN_NAME, PSN_KANA FROM PSN_TBL WHERE PSN_ID < 4
SELECT PSN_ID, PSN_ID FROM PSN_TBL WHERE PSN_ID = 4
SELECT COUNT(*) FROM PSN_TBL
SELECT PSN_ID, PSN_NAME FROM PSN_TBL WHERE PSN_ID = 99
DELETE FROM PSN_TBL WHERE PSN_ID = 3

-- A refused statement looks the same in every mode.
SELECT * FROM PSN_TBL
.mode csv
SELECT * FROM PSN_TBL

-- Columns of like name carry their tables.
.db department_db
SELECT DEPT_TBL.ID, EDIT_CNT_TBL.ID, EDIT_CNT_TBL.CNT FROM DEPT_TBL, EDIT_CNT_TBL WHERE DEPT_TBL.ID = EDIT_CNT_TBL.ID
.mode json
SELECT DEPT_TBL.ID, EDIT_CNT_TBL.ID, EDIT_CNT_TBL.CNT FROM DEPT_TBL, EDIT_CNT_TBL WHERE DEPT_TBL.ID = EDIT_CNT_TBL.ID

-- Listings are answers like any other.
.databases
.mode csv
.schema EDIT_CNT_TBL
