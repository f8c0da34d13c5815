-- People, by the reading of their names.
SELECT PSN_ID, PSN_NAME, PSN_KANA FROM PSN_TBL ORDER BY PSN_KANA

-- LIKE finds a prefix.
SELECT PSN_ID, PSN_NAME FROM PSN_TBL WHERE PSN_NAME LIKE 'Sa%'

-- A list.
SELECT PSN_ID, PSN_NAME FROM PSN_TBL WHERE PSN_ID IN (2, 4, 10)

-- A count.
SELECT COUNT(*) FROM PSN_TBL

-- Every record is in use: a new person finds no place, and the code and the trace say so.
.trace on
INSERT INTO PSN_TBL (PSN_ID, PSN_NAME, PSN_KANA) VALUES (11, 'Maeve O''Hara', 'オハラ メーヴ')
.trace off

-- Someone leaves, and there is room.
DELETE FROM PSN_TBL WHERE PSN_ID = 8
SELECT PSN_ID, PSN_NAME, INTEG_ID FROM PSN_TBL WHERE PSN_ID > 6
INSERT INTO PSN_TBL (PSN_ID, PSN_NAME, PSN_KANA) VALUES (11, 'Maeve O''Hara', 'オハラ メーヴ')
SELECT PSN_ID, PSN_NAME, INTEG_ID FROM PSN_TBL WHERE PSN_ID > 6

-- One more change.
UPDATE PSN_TBL SET INTEG_ID = 111 WHERE PSN_NAME LIKE 'Maeve%'
SELECT PSN_ID, PSN_NAME, INTEG_ID FROM PSN_TBL WHERE PSN_ID > 6

-- The busiest of the sales departments.
.db department_db
SELECT ID, NAME, TOTAL_M FROM DEPT_TBL WHERE NAME LIKE 'Sales %' AND TOTAL_M > 6000 ORDER BY TOTAL_M DESC

-- Departments with their edit counters: two tables, joined.
SELECT DEPT_TBL.ID, DEPT_TBL.NAME, EDIT_CNT_TBL.CNT FROM DEPT_TBL, EDIT_CNT_TBL WHERE DEPT_TBL.ID = EDIT_CNT_TBL.ID

-- A statement that is refused. The trace tells why, from the place that found the fault up to the caller.
.trace on
SELECT NAME FROM DEPT_TBL WHERE ID = 1 AND ID = 2 OR ID = 3
