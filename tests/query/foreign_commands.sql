-- What other shells have, and what is here.
\d
\dt
\q
\?
\x
\nothing
?
.shell ls
.width 10 20
.separator ,
.nullvalue NULL
.header on
quit
exit
help

-- A table of another database is shown; other commands say where it is, or what may have been meant.
.schema P_SSFC_LOG_TBL
.schema PSN_TABLE
.schema NOTHING
.dump DEPT_TBL
.dump PSN_TABLE
.dump NOTHING
.record DEPT_TBL 1
.record PSN_TABLE 1
.record NOTHING 1
.import people.csv DEPT_TBL
.import people.csv PSN_TABLE
