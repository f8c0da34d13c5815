-- Records as they lie in the element tables.
.record PSN_TBL 2
.record PSN_TBL 0
DELETE FROM PSN_TBL WHERE PSN_ID = 2
.record PSN_TBL 2
.record PSN_TBL 11
.record PSN_TBL
.record PSN_TBL x
.record PSM_TBL 1
.record EMAIL_TBL 1

-- Columns that are members of one element have places within it.
.db log_db
.record P_JOB_LOG_TBL 1

-- Names that were nearly typed.
.trace off
.db adbk_bd
.schema PSN_TABLE
.tabels
.help .record
.help record
.watch
.watch 0 SELECT PSN_ID FROM PSN_TBL
.watch x SELECT PSN_ID FROM PSN_TBL
.watch 1 SELECT * FROM PSN_TBL
SELECT PSN_IDD FROM PSN_TBL
UPDATE PSN_TBL SET PSN_NAMES = 'x' WHERE PSN_ID = 1
INSERT INTO PSN_TBL (PSN_NAME) VALUES ('x')
.db adbk_db
SELECT PSN_IDD FROM PSN_TBL
UPDATE PSN_TBL SET PSN_NAMES = 'x' WHERE PSN_ID = 1
UPDATE PSN_TBL SET PSN_ID = 1 WHERE PSN_NMAE = 'x'
INSERT INTO PSN_TBL (PSN_NAME) VALUES ('鈴木')
INSERT INTO PSN_TBL (PSN_NAME, PSN_ID) VALUES ('鈴木', 0)
INSERT INTO PSN_TBL (PSN_ID, PSN_NAME) VALUES (1, '鈴木', 2)
