-- Conditions that are not accepted, and where the trace says so.

-- Operators.
SELECT PSN_ID FROM PSN_TBL WHERE 'x' = PSN_NAME
SELECT PSN_ID FROM PSN_TBL WHERE PSN_ID like 1

-- One side missing.
SELECT PSN_ID FROM PSN_TBL WHERE = 1
SELECT PSN_ID FROM PSN_TBL WHERE PSN_ID = 1 AND PSN_ID =

-- Lists without brackets, or with nothing in them.
SELECT PSN_ID FROM PSN_TBL WHERE PSN_ID IN (1
SELECT PSN_ID FROM PSN_TBL WHERE PSN_ID IN ( )
SELECT PSN_ID FROM PSN_TBL WHERE PSN_ID IN (1,2,)

-- Quotes without an end.
SELECT PSN_ID FROM PSN_TBL WHERE PSN_NAME IN ('x)
SELECT PSN_ID FROM PSN_TBL WHERE PSN_NAME IN ('x', 'y)

-- Quotes protect neither a comma in a list nor a join word.
SELECT PSN_ID FROM PSN_TBL WHERE PSN_NAME IN ('a,b')
SELECT PSN_ID FROM PSN_TBL WHERE PSN_NAME = 'a AND b'

-- Patterns end in a percent sign.
SELECT PSN_ID FROM PSN_TBL WHERE PSN_NAME LIKE '%a'
SELECT PSN_ID FROM PSN_TBL WHERE PSN_NAME INLIKE ('x')
SELECT PSN_ID FROM PSN_TBL WHERE PSN_NAME INLIKE ('a%','b')

-- The second condition of a list is refused at a line of its own.
SELECT PSN_ID FROM PSN_TBL WHERE PSN_ID = 1 OR PSN_ID == 2

-- " IN" is looked for before "=": a right side that begins with IN is cut there.
SELECT PSN_ID FROM PSN_TBL WHERE PSN_ID = INTEG_ID

-- Accepted as text, and refused by the table: no such column.
SELECT PSN_ID FROM PSN_TBL WHERE PSN_ID <> 1
SELECT PSN_ID FROM PSN_TBL WHERE psn_id = 1
SELECT PSN_ID FROM PSN_TBL WHERE PSN_TBL.PSN_ID = 1
SELECT PSN_ID FROM PSN_TBL WHERE PSN_ID	= 1

-- Texts have no order here, and numbers no prefix.
SELECT PSN_ID FROM PSN_TBL WHERE PSN_NAME >= 'a'
SELECT PSN_ID FROM PSN_TBL WHERE PSN_ID INLIKE ('1%')
