-- Platform calls that fail on purpose.
.trace off
.fault get_table 0 1 0x5244
SELECT PSN_NAME FROM PSN_TBL WHERE PSN_ID = 1
-- It was ordered once.
SELECT PSN_NAME FROM PSN_TBL WHERE PSN_ID = 1
.fault alloc 0 1000 1
.fault off
SELECT PSN_NAME FROM PSN_TBL WHERE PSN_ID = 1
.fault alloc 0 1 1
UPDATE PSN_TBL SET PSN_NAME = 'x' WHERE PSN_ID = 1
.fault get_table 0 1 0x5244
.tables
.fault create_list 0 1 1
.dump PSN_TBL

-- Every call of a statement in turn.
.mode csv
.fault sweep UPDATE PSN_TBL SET PSN_NAME = 'changed' WHERE PSN_ID = 3;

-- The records are as they were.
SELECT COUNT(*) FROM PSN_TBL
SELECT PSN_NAME FROM PSN_TBL WHERE PSN_ID = 3

-- Orders that make no sense.
.fault
.fault alloc
.fault alloc 0 1 x
.fault alloc 0 1 0x100000000
.fault aloc 0 1 1
.fault sweep
.fault sweep UPDATE PSN_TBL
.fault off now
