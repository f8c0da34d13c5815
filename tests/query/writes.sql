-- INSERT and UPDATE, which the shell turns into statement records.

-- Every record is in use: a new key finds no place.
INSERT INTO PSN_TBL (PSN_ID, PSN_NAME) VALUES (11, 'Maeve')

-- A deleted record makes room, and begins as the default record.
DELETE FROM PSN_TBL WHERE PSN_ID = 8
INSERT INTO PSN_TBL (PSN_ID, PSN_NAME, PSN_KANA) VALUES (11, 'O''Hara Maeve', 'オハラ メーヴ')
SELECT PSN_ID, PSN_NAME, PSN_KANA, INTEG_ID FROM PSN_TBL WHERE PSN_ID > 6

-- An existing key is overwritten, column by column.
INSERT INTO PSN_TBL (PSN_ID, INTEG_ID) VALUES (11, 111);
SELECT PSN_ID, PSN_NAME, INTEG_ID FROM PSN_TBL WHERE PSN_ID = 11

-- Keys.
INSERT INTO PSN_TBL (PSN_ID, PSN_NAME) VALUES (0, 'Nobody')
INSERT INTO PSN_TBL (PSN_NAME) VALUES ('Nobody')

-- Tables and columns that are not there.
INSERT INTO NO_TBL (PSN_ID) VALUES (1)
INSERT INTO PSN_TBL (PSN_ID, NO_COLUMN) VALUES (1, 2)
UPDATE PSN_TBL SET NO_COLUMN = 1 WHERE PSN_ID = 1
UPDATE NO_TBL SET PSN_ID = 1

-- A table without records.
INSERT INTO EMAIL_TBL (PSN_ID, EMAIL_ADDR) VALUES (1, 'sato@example.com')

-- A text that does not fit its column is not cut; nothing is written.
UPDATE PSN_TBL SET INTEG_ID = 1, PSN_NAME = 'xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx' WHERE PSN_ID = 1
INSERT INTO PSN_TBL (PSN_ID, PSN_NAME) VALUES (1, 'xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx')
SELECT PSN_ID, PSN_NAME, INTEG_ID FROM PSN_TBL WHERE PSN_ID = 1
UPDATE PSN_TBL SET PSN_NAME = 'xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx' WHERE PSN_ID = 1
SELECT PSN_NAME FROM PSN_TBL WHERE PSN_ID = 1

-- UPDATE of some rows, of all, of none.
UPDATE PSN_TBL SET INTEG_ID = 7, PSN_NAME = 'Same' WHERE PSN_ID IN (1, 2)
UPDATE PSN_TBL SET PSN_ADDR_ID = 9
SELECT PSN_ID, PSN_NAME, INTEG_ID, PSN_ADDR_ID FROM PSN_TBL
UPDATE PSN_TBL SET INTEG_ID = 1 WHERE PSN_ID = 99

-- Conditions of the dialect, refused by it.
UPDATE PSN_TBL SET INTEG_ID = 1 WHERE PSN_ID == 1
UPDATE PSN_TBL SET INTEG_ID = 1 WHERE PSN_ID = 1 OR PSN_ID = 2 AND PSN_ID = 3
UPDATE PSN_TBL SET INTEG_ID = 1 WHERE NO_COLUMN = 1

-- Values are converted through decimal text to the column's type.
UPDATE PSN_TBL SET PSN_NAME = 42, INTEG_ID = '12abc', PSN_ADDR_ID = 65537 WHERE PSN_ID = 2
SELECT PSN_NAME, INTEG_ID, PSN_ADDR_ID FROM PSN_TBL WHERE PSN_ID = 2
.db department_db
UPDATE DEPT_TBL SET TOTAL_M = 4294967295, TOTAL_L = 300, COLOR_PM = -1, NAME = -5 WHERE ID = 1
SELECT ID, NAME, TOTAL_M, TOTAL_L, COLOR_PM FROM DEPT_TBL WHERE ID = 1

-- The edit counters are not searched by key: an INSERT overwrites every record.
INSERT INTO EDIT_CNT_TBL (ID, CNT) VALUES (1, 5)
SELECT ID, CNT FROM EDIT_CNT_TBL
