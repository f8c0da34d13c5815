-- How statements are understood: the analyzed query, and the keys in the order in which they are tested.
.explain SELECT PSN_ID, PSN_NAME FROM PSN_TBL
.explain SELECT PSN_ID FROM PSN_TBL WHERE PSN_NAME LIKE 'Sa%' AND PSN_ID >= 2 ORDER BY PSN_NAME DESC;
.explain SELECT COUNT(*) FROM PSN_TBL WHERE PSN_ID IN (1, 2)
.explain INSERT INTO PSN_TBL (PSN_ID, PSN_NAME) VALUES (11, 'it''s')
.explain UPDATE PSN_TBL SET PSN_NAME = 'x' WHERE PSN_ID = 4
.explain DELETE FROM PSN_TBL
.explain DROP TABLE PSN_TBL
.explain CREATE TABLE X

-- Nothing was done.
SELECT COUNT(*) FROM PSN_TBL

-- A table of several keys, and one without.
.explain SELECT GRP_ID FROM GRPM_TBL
.explain SELECT ID FROM EDIT_CNT_TBL WHERE ID = 1

-- A join: its parts, its links, and a key column that nobody selected.
.db department_db
.explain SELECT DEPT_TBL.NAME FROM DEPT_TBL, EDIT_CNT_TBL WHERE DEPT_TBL.ID = EDIT_CNT_TBL.ID AND EDIT_CNT_TBL.CNT > 5

-- What is refused is refused as it would be.
.trace off
.explain SELECT ID FROM DEPT_TBL WHERE ID == 1
.explain SELECT ID FROM DEPT_TBLE
.explain UPDATE DEPT_TBL SET
