-- Statements without rows that are not accepted, and where the trace says so.

-- Anything but the four forms.
REPLACE INTO PSN_TBL
delete from PSN_TBL
SELECTION
DELETE PSN_TBL
DELETE x FROM PSN_TBL
DROP TABLE;

-- Text in front.
please DELETE FROM PSN_TBL
please DROP TABLE PSN_TBL

-- Keywords that are repeated.
CREATE TABLE A CREATE TABLE B
CREATE TABLE A TABLE B
DROP TABLE A DROP TABLE B
DELETE FROM A DELETE FROM B
DELETE FROM A FROM B
DELETE FROM PSN_TBL WHERE PSN_ID = 1 WHERE PSN_ID = 2

-- No table.
DELETE FROM ;
DROP TABLE ;

-- Clauses that do not belong.
DELETE FROM PSN_TBL ORDER BY PSN_ID
DROP TABLE PSN_TBL WHERE PSN_ID = 1

-- A WHERE that is not recognised becomes part of the table's name.
DELETE FROM PSN_TBL WHERE ;

-- Conditions, tables and columns.
DELETE FROM PSN_TBL WHERE PSN_ID = 1 AND PSN_ID = 2 OR PSN_ID = 3
DELETE FROM PSN_TBL WHERE PSN_NAME LIKE 'x'
DELETE FROM NO_TBL
DROP TABLE NO_TBL
DELETE FROM PSN_TBL WHERE NO_COLUMN = 1

-- Nothing was deleted by any of these.
SELECT COUNT(*) FROM PSN_TBL
