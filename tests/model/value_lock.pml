/*
 * The value lock of platform/host/value_lock.cpp and the reads of platform/host/moment_copy.cpp, on one value of two
 * halves. docs/value-lock.md says how the steps correspond and what is left out; run.sh checks it, and that each of
 * the changes CHANGE_... below is found out.
 *
 * Stores that no barrier keeps in order are made in any order, and seen so by the readers. A writer may be killed, or
 * stopped for good, before any of its steps.
 */
#ifndef WRITERS
#define WRITERS 2
#endif
#ifndef READERS
#define READERS 2
#endif
#ifndef READ_ONLY
#define READ_ONLY 1
#endif
#ifndef KILLS
#define KILLS 2
#endif
#ifndef STOPS
#define STOPS 1
#endif

#define FREE 0
#define DEAD 255 /* the system tells the next one that the holder died */
#define NONE 0
#define VALUE 1
#define PROCESSES (WRITERS + READERS + 1)
#define MOST_NUMBERS (2 * WRITERS + 2)

byte half_0, half_1;
byte old_0, old_1;
byte kind = NONE;
byte sequence;
byte lock = FREE;
byte opening = FREE; /* the byte of the file that openers lock */
byte users;          /* who shares the other one */
bool stopped[PROCESSES];

/* What the steps cannot see: every write has a number of its own, and these ended. */
byte last_number;
byte last_ended;
bool ended[MOST_NUMBERS];

byte kills = KILLS;
byte stops = STOPS;

#define STEP(action)                                                                                                  \
    atomic {                                                                                                           \
        if                                                                                                             \
        :: kills > 0 -> kills--; goto died                                                                             \
        :: stops > 0 -> stops--; stopped[me] = true; goto end_stopped                                                  \
        :: true                                                                                                        \
        fi;                                                                                                            \
        action                                                                                                         \
    }

#define IN_ANY_ORDER(one, other)                                                                                       \
    if                                                                                                                 \
    :: STEP(one); STEP(other)                                                                                          \
    :: STEP(other); STEP(one)                                                                                          \
    fi

/* settle_write(): the old value goes back before the sequence is even, and the kind is cleared last. */
#ifdef CHANGE_SETTLE_ENDS_FIRST
#define PUT_BACK STEP(sequence++); IN_ANY_ORDER(half_0 = old_0, half_1 = old_1)
#else
#define PUT_BACK IN_ANY_ORDER(half_0 = old_0, half_1 = old_1); STEP(sequence++)
#endif
#define SETTLE                                                                                                         \
    if                                                                                                                 \
    :: sequence % 2 == 0                                                                                               \
    :: else ->                                                                                                         \
        assert(kind == VALUE); /* an opener would take the image for damaged */                                        \
        PUT_BACK;                                                                                                      \
        STEP(kind = NONE)                                                                                              \
    fi

/* value_lock::take(): try and pause. Who waits for one that is stopped answers a code after its time. */
#define TAKE                                                                                                           \
    if                                                                                                                 \
    :: atomic { lock == FREE || lock == DEAD -> lock = me }                                                            \
    :: atomic { lock != FREE && lock != DEAD && stopped[lock] -> goto refused }                                        \
    fi;                                                                                                                \
    SETTLE

#define KEEP_OLD IN_ANY_ORDER(old_0 = half_0, old_1 = half_1)
#define NAME STEP(kind = VALUE)

/* value_lock::replace() */
#if defined(CHANGE_NAME_AFTER_BEGIN)
#define BEGIN STEP(sequence++); KEEP_OLD; NAME
#else
#define BEGIN                                                                                                          \
    if                                                                                                                 \
    :: KEEP_OLD; NAME                                                                                                  \
    :: NAME; KEEP_OLD                                                                                                  \
    fi;                                                                                                                \
    STEP(sequence++)
#endif

#define HALF_0 half_0 = number
#define HALF_1 half_1 = number
#define END sequence++; last_ended = number; ended[number] = true

#if defined(CHANGE_WRITE_BEFORE_BEGIN)
#define REPLACE                                                                                                        \
    KEEP_OLD; NAME; STEP(HALF_0); STEP(sequence++); STEP(HALF_1); STEP(END); STEP(kind = NONE)
#elif defined(CHANGE_END_BEFORE_WRITTEN)
#define REPLACE BEGIN; STEP(HALF_0); STEP(END); STEP(HALF_1); STEP(kind = NONE)
#elif defined(CHANGE_UNNAME_BEFORE_END)
#define REPLACE BEGIN; IN_ANY_ORDER(HALF_0, HALF_1); STEP(kind = NONE); STEP(END)
#else
#define REPLACE BEGIN; IN_ANY_ORDER(HALF_0, HALF_1); STEP(END); STEP(kind = NONE)
#endif

/* The system's part when a process dies: its file locks go, and its mutex is marked. */
#define DIE                                                                                                            \
    atomic {                                                                                                           \
        if :: lock == me -> lock = DEAD :: else fi;                                                                    \
        if :: opening == me -> opening = FREE :: else fi;                                                              \
        if :: is_user -> users-- :: else fi;                                                                           \
        goto end_gone                                                                                                  \
    }

/* What a process knew when it ended makes no difference: such states are one. */
#define FORGET(variables) atomic { variables }

/* Opens the image (or has it open), writes once, closes it. */
proctype writer(byte me) {
    byte number;
    bool is_user = false;

#ifdef OPENERS
    /* open_image(): who is alone settles what is left and makes the lock anew. */
    if
    :: atomic { opening == FREE -> opening = me }
    :: atomic { opening != FREE && stopped[opening] -> goto end_gone } /* an opener waits for a second */
    fi;
    if
    :: users > 0
    :: else -> SETTLE; STEP(lock = FREE)
    fi;
    STEP(users++; is_user = true; opening = FREE);
#endif

    TAKE;
    STEP(last_number++; number = last_number);
    REPLACE;
    STEP(lock = FREE);
refused:
    atomic {
        if :: is_user -> users-- :: else fi;
        is_user = false;
        goto end_gone
    };
died:
    DIE;
end_stopped:
    false;
end_gone:
    FORGET(number = 0)
}

/* Reads once. The first READ_ONLY of them may only read the file; the others may take the lock after two tries in vain. */
proctype reader(byte me) {
    byte before, copy_0, copy_1, least, tries;
    bool is_user = false;

    least = last_ended;
again:
    atomic { copy_0 = 0; copy_1 = 0; before = sequence };
#ifdef CHANGE_READER_WAITS
    if :: before % 2 == 0 :: else -> goto again fi;
#endif
    /* One order is enough: the halves are alike, and the writers take both. */
    copy_0 = half_0;
    copy_1 = half_1;
#ifndef CHANGE_READER_TAKES_TORN
    if
    :: before % 2 == 1 && kind == VALUE -> copy_0 = old_0; copy_1 = old_1
    :: else
    fi;
#endif
#ifndef CHANGE_READER_LOOKS_ONCE
    if
    :: sequence == before
    :: else ->
        if
        :: tries < 2 -> tries++; goto again
        :: else
        fi;
        if
        :: me > WRITERS + READ_ONLY ->
            if
            :: atomic { lock == FREE || lock == DEAD -> lock = me };
                SETTLE;
                STEP(copy_0 = half_0);
                STEP(copy_1 = half_1);
                STEP(lock = FREE)
            :: atomic { lock != FREE && lock != DEAD -> goto again }
            fi
        :: else -> goto again
        fi
    fi;
#endif
    atomic {
        assert(copy_0 == copy_1); /* not torn */
        assert(ended[copy_0]);    /* nor of a write that was undone */
        assert(copy_0 >= least);  /* and no write is lost that had ended before */
        goto end_gone
    };
died:
    DIE;
end_stopped:
    false;
end_gone:
    FORGET(before = 0; copy_0 = 0; copy_1 = 0; least = 0; tries = 0)
}

init {
    byte process = 1;
    atomic {
        ended[0] = true;
        do
        :: process <= WRITERS -> run writer(process); process++
        :: process > WRITERS && process <= WRITERS + READERS -> run reader(process); process++
        :: else -> break
        od
    }
}
