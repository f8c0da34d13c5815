-- A record is free when its key is the default record's, whatever that is: 7 here.
SELECT PSN_ID, PSN_NAME, INTEG_ID FROM PSN_TBL
SELECT COUNT(*) FROM PSN_TBL
SELECT PSN_ID FROM PSN_TBL WHERE PSN_ID = 7

-- A new row takes the first free record and keeps the default's other values.
INSERT INTO PSN_TBL (PSN_ID) VALUES (8)
INSERT INTO PSN_TBL (PSN_ID, PSN_NAME) VALUES (9, 'nine')
SELECT PSN_ID, PSN_NAME, INTEG_ID FROM PSN_TBL
INSERT INTO PSN_TBL (PSN_ID, PSN_NAME) VALUES (7, 'seven')

-- Deleted and inserted again, in its place; and freed by its key.
DELETE FROM PSN_TBL WHERE PSN_ID = 3
INSERT INTO PSN_TBL (PSN_NAME, PSN_ID) VALUES ('ten', 10)
UPDATE PSN_TBL SET PSN_ID = 7 WHERE PSN_ID = 8
SELECT PSN_ID, PSN_NAME, INTEG_ID FROM PSN_TBL

-- Control characters: escaped in a table, kept in comma-separated values and JSON.
INSERT INTO PSN_TBL (PSN_ID) VALUES (11)
SELECT PSN_ID, PSN_NAME FROM PSN_TBL WHERE PSN_ID = 0
.mode csv
SELECT PSN_ID, PSN_NAME FROM PSN_TBL WHERE PSN_ID = 0
.mode json
SELECT PSN_ID, PSN_NAME FROM PSN_TBL WHERE PSN_ID = 0
