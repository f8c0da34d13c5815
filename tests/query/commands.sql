-- The shell's commands.
.help
.databases
.tables
.schema PSN_TBL

-- Another database.
.db department_db
.tables
.schema
.db nowhere
.schema PSN_TBL
SELECT COUNT(*) FROM DEPT_TBL

-- Saved records come back.
.db adbk_db
.save saved.json
DROP TABLE PSN_TBL
SELECT COUNT(*) FROM PSN_TBL
.load saved.json
.load missing.json
SELECT PSN_ID, PSN_NAME FROM PSN_TBL WHERE PSN_NAME LIKE '渡%'

-- Settings.
.trace off
SELECT * FROM PSN_TBL
.trace on
SELECT * FROM PSN_TBL
.trace maybe
.mode xml
.echo off
-- This line and the next one are not shown, but the answer is.
SELECT COUNT(*) FROM PSN_TBL
.echo on

-- Arguments that are missing, or too many.
.db
.mode
.trace
.echo
.load
.save
.tables PSN_TBL
.databases all
.quit now
.help me

-- Commands that are not there.
.table
.
.TABLES

-- Empty lines, comments and a lone semicolon are skipped.

   
  -- A comment may be indented.
;

-- Nothing after this is read.
.quit
SELECT PSN_ID FROM PSN_TBL
