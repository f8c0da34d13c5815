-- Statements that stand on several lines: they end with ";". A line end counts as one blank.
SELECT PSN_ID, PSN_NAME
FROM PSN_TBL
WHERE PSN_ID < 3;

-- Indented with blanks and tabs, with an empty line and a comment inside, blanks behind, ";" on a line of its own.
SELECT
	PSN_ID,
    PSN_NAME   
FROM
	PSN_TBL

    -- the first two
WHERE PSN_ID IN (
    1,
    2
)
;

-- A first line that ends with a comma, a bracket, WHERE, AND or OR is not whole.
SELECT PSN_ID FROM PSN_TBL WHERE PSN_ID > 2 AND
    PSN_ID < 5;
SELECT COUNT(*) FROM PSN_TBL WHERE PSN_ID IN (1,
    2, 3);
SELECT COUNT(*) FROM PSN_TBL WHERE PSN_ID = 1 OR
    PSN_ID = 2 OR
    PSN_ID = 99;
DELETE FROM PSN_TBL WHERE
    PSN_ID = 9;
SELECT COUNT(*) FROM PSN_TBL

-- A line that is whole is a statement, whatever follows.
SELECT COUNT(*) FROM PSN_TBL
WHERE PSN_ID = 1;

-- INSERT and UPDATE go on until they are understood to their end.
INSERT INTO PSN_TBL (PSN_ID, PSN_NAME)
VALUES (11,
        'Maeve O''Hara');
UPDATE PSN_TBL
   SET INTEG_ID = 111,
       PSN_KANA = 'オハラ メーヴ'
 WHERE PSN_NAME = 'Maeve O'Hara';
SELECT PSN_ID, PSN_NAME, PSN_KANA, INTEG_ID FROM PSN_TBL WHERE PSN_ID = 11

-- Between their quotes a line end is part of the text, and so is all else.
UPDATE PSN_TBL SET PSN_NAME = 'one;
-- two
.quit
   three', INTEG_ID = 112
WHERE PSN_ID = 11;
.mode json
SELECT PSN_NAME, INTEG_ID FROM PSN_TBL WHERE PSN_ID = 11
.mode table

-- In a condition a quote may stand alone, and makes no line go on.
SELECT PSN_ID FROM PSN_TBL WHERE PSN_NAME = 'Sato

-- A caret stands under the line as it was put together.
SELECT PSN_ID
  FROM PSN_TBL
 WHERE PSN_NANE = 'Sato Kenji';
INSERT INTO PSN_TBL (PSN_ID, PSN_NAME)
VALUES (12);

-- Lower case is refused at once, and so is what is no statement.
select PSN_ID
SELECT PSN_ID from PSN_TBL
FROM PSN_TBL

-- A forgotten ";" costs one statement: it is not run, and the next statement or command is.
DELETE FROM
    PSN_TBL
SELECT COUNT(*) FROM PSN_TBL
DELETE FROM
    PSN_TBL
.db department_db
.db adbk_db
SELECT COUNT(*) FROM PSN_TBL

-- Several statements on a line, and a comment behind them.
SELECT COUNT(*) FROM PSN_TBL; SELECT COUNT(*) FROM GRP_TBL;SELECT COUNT(*) FROM PSN_TBL WHERE PSN_NAME = 'x; y'; -- done
	SELECT COUNT(*) FROM PSN_TBL; SELECT COUNT(*)
	FROM GRP_TBL;

-- The end of the text ends a statement, too.
SELECT COUNT(*)
FROM PSN_TBL
WHERE PSN_ID < 3
