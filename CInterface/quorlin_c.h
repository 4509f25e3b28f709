/* The C interface: an SMBIOS table as items, and as facts, for any language that can call a C function. Items are
 * below; facts follow them, with rules of their own.
 *
 * A handle is one table, read and decoded when it is opened; it needs neither the machine nor the file afterwards.
 * Its items are numbered from 0, in the order of the table's types: a structure begins with an item that is its title,
 * and the items up to the next title belong to it. Types 0 to 42, 126, 127, 130, 131, 221 and 222 are
 * decoded, and type 148 if the options ask for it.
 *
 * Text       NUL-terminated. A value, and the key of a vendor's item, may have bytes of a firmware string, which are
 *            passed on unchanged, whatever their encoding. The text of an item lives until its handle is closed.
 * Null       Functions with a status return QUORLIN_NULL_POINTER for a null handle, out argument or text; the others
 *            return 0 or null for a null handle. quorlin_close takes null.
 * Out        Out arguments are written on QUORLIN_OK only.
 * Threads    Handles are independent of each other and may be opened on any number of threads. One handle is for one
 *            thread at a time; functions that take it as const may run at once.
 * Memory     The caller closes the handle. Nothing else must be released.
 * ABI        Stable within a major version: structures keep their layout, except quorlin_options, which grows at its
 *            end and states its size. No exception leaves the library. */
#ifndef QUORLIN_C_H
#define QUORLIN_C_H

#include <stddef.h>
#include <stdint.h>

#include "Packages/OS/Export.h"

#ifdef __cplusplus
extern "C" {
#endif

/* The version that this header belongs to; quorlin_version returns that of the library. */
#define QUORLIN_VERSION_MAJOR 1
#define QUORLIN_VERSION_MINOR 1
#define QUORLIN_VERSION_PATCH 0

typedef uint32_t quorlin_status;
enum {
    QUORLIN_OK = 1,
    QUORLIN_BAD_VALUE = 2,    /* an index after the last item, options of an unknown size */
    QUORLIN_NO_MEMORY = 3,    /* out of memory */
    QUORLIN_NULL_POINTER = 4, /* a null argument */
    QUORLIN_NO_TABLE = 5,     /* the machine has no table, or doesn't let this user read it */
    QUORLIN_NO_MORE = 7,      /* after the last item, or no item found */
    QUORLIN_BUSY = 8,         /* the process uses the package interface at this time: close its packages first */
    QUORLIN_NO_IMAGE = 9,     /* the file or record can't be read, or file or memory have no table in any known form */
    QUORLIN_TOO_MANY_ITEMS = 10 /* more than 8 items for each byte of the table, and more than 100,000: its groups
                                   multiply without bound */
};

enum {
    QUORLIN_ITEM = 0,      /* a key and a value */
    QUORLIN_STRUCTURE = 1, /* the key is the title of a structure, the value is empty */
    QUORLIN_GROUP = 2      /* the key is the heading of the items after it in the same structure, the value is empty */
};

typedef struct quorlin_table quorlin_table;

typedef struct quorlin_item {
    const char* key;    /* without the mark that a group's key has in the package interface */
    const char* value;  /* as decoded, never null */
    uint32_t index;     /* the item's number, from 0 */
    uint32_t structure; /* the number of its structure's title */
    uint32_t kind;      /* QUORLIN_ITEM, QUORLIN_STRUCTURE or QUORLIN_GROUP */
} quorlin_item;

/* How to open. Set `size` and leave at 0 what isn't wanted: quorlin_options options = {sizeof options}; */
typedef struct quorlin_options {
    uint32_t size;      /* sizeof(quorlin_options); that of an older header, without the last members, is taken too */
    uint32_t signature; /* of an image: the processor's, EAX of CPUID leaf 1; a few texts depend on it */
    uint8_t smbios_major, smbios_minor; /* of a bare table, which doesn't state its version; 0.0 is taken as 3.0 */
    uint8_t use_driver; /* of this machine: not 0 to go on to physical memory if the system offers no table; on
                           Windows that installs the kernel driver, on Linux it reads /dev/mem */
    uint8_t type_148;   /* not 0 to decode type 148 too, firmware versions of a vendor, after all others */
    const char* replay; /* of quorlin_open_machine and quorlin_facts_open_machine: not null for the recorded machine in
                           this folder, which `quorlin record` wrote, in place of this machine; UTF-8 (since 1.1) */
} quorlin_options;

/* Opens this machine's table, `options` may be null. Usually needs root or an administrator.
 * Status: OK, NO_TABLE, BUSY, NO_MEMORY, NULL_POINTER, BAD_VALUE. */
QUORLIN_API quorlin_status quorlin_open_machine(const quorlin_options* options, quorlin_table** table);

/* Opens the image in a file, in any form that the library knows: a dump that begins with an entry point (_SM_ or
 * _SM3_), a bare table, the answer of Windows' firmware-table call, any of them compressed with gzip; or in a folder
 * with the files smbios_entry_point and DMI. `path` is UTF-8 on every platform.
 * Status: OK, NO_IMAGE, NO_TABLE, BUSY, NO_MEMORY, NULL_POINTER, BAD_VALUE. */
QUORLIN_API quorlin_status quorlin_open_file(const char* path, const quorlin_options* options, quorlin_table** table);

/* The same with an image in memory, which the caller may free when the function returns. */
QUORLIN_API quorlin_status quorlin_open_memory(const void* bytes, size_t size, const quorlin_options* options,
                                               quorlin_table** table);

/* Why the last opening on this thread failed and what to try, in a sentence; empty if it didn't fail. Lives until the
 * next opening on this thread. */
QUORLIN_API const char* quorlin_last_error(void);

/* Frees the handle and all text that came from it. */
QUORLIN_API void quorlin_close(quorlin_table* table);

/* The SMBIOS version of the table. Either pointer may be null. */
QUORLIN_API quorlin_status quorlin_smbios_version(const quorlin_table* table, uint8_t* major, uint8_t* minor);

/* Where the table came from: "this machine", or the form of the image ("dump", "table", "windows", "sysfs"), with
 * ", compressed with gzip" if it was. Null for a null handle. Lives as long as the handle. */
QUORLIN_API const char* quorlin_form(const quorlin_table* table);
/* What is wrong with the table as a whole, in a sentence: that it is cut short, that a structure is broken (what comes
 * after it may be made up), that its entry point's checksums don't fit, that no End-of-Table structure ends it. Empty
 * if nothing is. Null for a null handle. Lives as long as the handle. */
QUORLIN_API const char* quorlin_remark(const quorlin_table* table);

/* The item under the handle's cursor, which moves on. NO_MORE at the end, on every call. */
QUORLIN_API quorlin_status quorlin_next(quorlin_table* table, quorlin_item* item);
/* Sets the cursor back to the first item. */
QUORLIN_API quorlin_status quorlin_rewind(quorlin_table* table);

/* The number of items of all kinds. */
QUORLIN_API uint32_t quorlin_count(const quorlin_table* table);
/* An item by its number. BAD_VALUE after the last one. */
QUORLIN_API quorlin_status quorlin_get(const quorlin_table* table, uint32_t index, quorlin_item* item);
/* The value of an item, or null after the last one. */
QUORLIN_API const char* quorlin_value(const quorlin_table* table, uint32_t index);
/* The first item from number `from` on whose key is `key`, letter for letter. To go on, search from item->index + 1.
 * The cursor stays. NO_MORE when there is none. */
QUORLIN_API quorlin_status quorlin_find(const quorlin_table* table, const char* key, uint32_t from, quorlin_item* item);

/* Facts (since 1.1): what each structure says by the newest level of the SMBIOS standard, as numbers in a unit, words
 * of codes, texts and so on, with the bytes that they come from.
 *
 *     const quorlin_structure* structure;
 *     const quorlin_fact* fact;
 *     for (index = 0; (structure = quorlin_structure_at(table, index)) != NULL; index++) {
 *         quorlin_walk_begin(walk, index, 0);
 *         while ((fact = quorlin_walk_next(walk)) != NULL)
 *             if (fact->state == QUORLIN_IS_VALUE) printf("%s %.*s\n", fact->key, (int)fact->text_size, fact->text);
 *     }
 *
 * Tables     A quorlin_fact_table has a copy of the bytes, and doesn't change. Any number may be open at once, also
 *            while the process uses the package interface. Only quorlin_facts_open_machine needs that to be closed.
 * Walks      A quorlin_fact_walk is a cursor over the facts of one structure at a time. It allocates when it is opened
 *            and never again. Close it before its table.
 * Structs    The library makes quorlin_structure and quorlin_fact, and may add members at their end. Don't copy them
 *            by size into a block that an older header describes.
 * Lifetime   A structure and its bytes, and all constant texts, live until the table is closed. A fact, and its `text`,
 *            live until the next call for the same walk.
 * Text       Keys, names, units and words are constant, in UTF-8, and end in a NUL. `text` and `string` have any bytes
 *            but NUL, as the firmware wrote them, and don't always end in a NUL: use their size.
 * Threads    A table may be used by any number of threads at once, a walk by one at a time. */
typedef struct quorlin_fact_table quorlin_fact_table;
typedef struct quorlin_fact_walk quorlin_fact_walk;

/* What a fact is, and which members have its value. */
enum {
    QUORLIN_NUMBER = 0,  /* number, in its unit; int64_t if is_signed */
    QUORLIN_TEXT = 1,    /* text; number is the string's number, if it is one of the structure's strings */
    QUORLIN_CODE = 2,    /* number is the code, text its word; empty for a reserved code */
    QUORLIN_BITS = 3,    /* number; quorlin_walk_word has the words of its set bits */
    QUORLIN_HANDLE = 4,  /* number */
    QUORLIN_UUID = 5,    /* text, in the byte order of the table's version */
    QUORLIN_DATE = 6,    /* text, such as 2023-05-12 */
    QUORLIN_RELEASE = 7, /* text, such as 5.17 */
    QUORLIN_BYTES = 8,   /* its bytes in the structure */
    QUORLIN_LIST = 9     /* number of records; their facts follow, with `record` from 0 */
};

/* What a fact's value is worth. Only QUORLIN_IS_VALUE says something about the machine. */
enum {
    QUORLIN_IS_VALUE = 0,
    QUORLIN_IS_UNKNOWN = 1,  /* the standard's code for an unknown value */
    QUORLIN_IS_NONE = 2,     /* the field says that there is nothing, or that another field has it */
    QUORLIN_IS_ABSENT = 3,   /* the structure is too short for it; no bytes */
    QUORLIN_IS_RESERVED = 4, /* a code that the standard doesn't assign */
    QUORLIN_IS_FILLER = 5,   /* a text that firmware was delivered with, or a UUID of all 00h or FFh */
    QUORLIN_IS_BROKEN = 6    /* a string or list that isn't there, a handle to nothing or to the wrong type */
};

typedef struct quorlin_structure {
    const char* name;     /* of its type, such as "Memory Device" */
    const uint8_t* bytes; /* with its strings */
    uint32_t size;        /* of bytes */
    uint32_t offset;      /* in the table */
    uint32_t index;       /* among all structures, from 0 */
    uint32_t instance;    /* among those of its type, from 1 */
    uint16_t handle;
    uint8_t type;
    uint8_t length;   /* of the formatted area, as the structure states it */
    uint8_t is_whole; /* 0 if the table ends within it */
} quorlin_structure;

typedef struct quorlin_fact {
    uint8_t kind;    /* QUORLIN_NUMBER and so on */
    uint8_t unit;    /* of number; quorlin_unit_text has its name */
    uint16_t offset; /* of its bytes in the structure: structure->bytes + offset */
    uint16_t size;   /* of its bytes; 0 for derived facts and for strings of a list */
    uint8_t state;   /* QUORLIN_IS_VALUE and so on */
    uint8_t is_signed;
    uint8_t is_reference; /* its state is QUORLIN_IS_NONE because the fact with the name `text` has the value */
    uint8_t is_derived;   /* made from other facts, whose keys quorlin_walk_source has */
    uint8_t key_size;
    uint8_t name_size;
    int32_t record; /* of a fact in a list, the number of its record, from 0; otherwise -1 */
    const void* reserved;
    const char* key;  /* stable, such as "memory_size" */
    const char* name; /* the standard's name, such as "Memory Size" */
    uint64_t number;
    size_t text_size;
    const char* text; /* never null; of other kinds, why the number isn't a value */
    size_t string_size;
    const char* string; /* the bytes of a text in the structure's strings; never null */
} quorlin_fact;

/* Open a table as quorlin_open_machine, quorlin_open_file and quorlin_open_memory do, with the same options and
 * statuses. `signature` and `type_148` have no effect. quorlin_last_error tells of these openings too. */
QUORLIN_API quorlin_status quorlin_facts_open_machine(const quorlin_options* options, quorlin_fact_table** table);
QUORLIN_API quorlin_status quorlin_facts_open_file(const char* path, const quorlin_options* options,
                                                   quorlin_fact_table** table);
QUORLIN_API quorlin_status quorlin_facts_open_memory(const void* bytes, size_t size, const quorlin_options* options,
                                                     quorlin_fact_table** table);
/* Frees the table. Null is allowed. */
QUORLIN_API void quorlin_facts_close(quorlin_fact_table* table);

/* The SMBIOS version of the table. Either pointer may be null. */
QUORLIN_API quorlin_status quorlin_facts_version(const quorlin_fact_table* table, uint8_t* major, uint8_t* minor);
/* Where the table came from, and what is wrong with it as a whole, as quorlin_form and quorlin_remark say it. */
QUORLIN_API const char* quorlin_facts_form(const quorlin_fact_table* table);
QUORLIN_API const char* quorlin_facts_remark(const quorlin_fact_table* table);
/* The bytes of the table. Null for a null handle. */
QUORLIN_API const uint8_t* quorlin_facts_bytes(const quorlin_fact_table* table, size_t* size);

/* The number of structures, up to and including the first End-of-Table. */
QUORLIN_API uint32_t quorlin_structure_count(const quorlin_fact_table* table);
/* A structure by its index. Null after the last one. */
QUORLIN_API const quorlin_structure* quorlin_structure_at(const quorlin_fact_table* table, uint32_t index);

/* Opens a walk, which has no facts before quorlin_walk_begin. Status: OK, NO_MEMORY, NULL_POINTER. */
QUORLIN_API quorlin_status quorlin_walk_open(const quorlin_fact_table* table, quorlin_fact_walk** walk);
/* Frees the walk. Null is allowed. */
QUORLIN_API void quorlin_walk_close(quorlin_fact_walk* walk);
/* Goes to the first fact of the structure with this index. If `with_absent` isn't 0, the walk has facts of the state
 * QUORLIN_IS_ABSENT too. Status: OK, BAD_VALUE after the last structure, NULL_POINTER. */
QUORLIN_API quorlin_status quorlin_walk_begin(quorlin_fact_walk* walk, uint32_t index, int with_absent);
/* The next fact: fields in the order of the standard, parts of a field after it, the records of a list after the list,
 * derived facts last. Null after the last one. */
QUORLIN_API const quorlin_fact* quorlin_walk_next(quorlin_fact_walk* walk);
/* Of the last fact, if it is a bit list: the word of the first set bit from number *bit on. Sets *bit to the number
 * after that bit. Null if no more set bit has a word. */
QUORLIN_API const char* quorlin_walk_word(const quorlin_fact_walk* walk, uint32_t* bit);
/* Of the last fact, if it is derived: the key of a fact that it comes from, by its number from 0 on. In a list it is a
 * fact of the same record. Null after the last one. */
QUORLIN_API const char* quorlin_walk_source(const quorlin_fact_walk* walk, uint32_t index);

/* A unit of facts in UTF-8, such as "byte" or "MT/s"; "" for none and for other numbers. Constant text. */
QUORLIN_API const char* quorlin_unit_text(uint32_t unit);
/* A state of facts in a word, such as "unknown"; "" for other numbers. Constant text. */
QUORLIN_API const char* quorlin_state_text(uint32_t state);

/* Analysis (since 1.1): what is wrong with a table, what differs between two, and a copy without what tells its machine
 * from others. The functions call `take` with one thing after the other, in the calling thread, and with `context`,
 * which is the caller's own. What `take` gets lives for its call; it must not throw, nor jump out. Tables aren't
 * changed, and any number of threads may analyse one. */
#define QUORLIN_NO_STRUCTURE 0xFFFFFFFFu

enum { QUORLIN_NOTE = 0, QUORLIN_WARNING = 1, QUORLIN_ERROR = 2 };

typedef struct quorlin_finding {
    const char* rule; /* its id, such as "QR0501", which never changes */
    const char* what; /* what is wrong, why it matters, and what firmware should do; constant */
    const char* why;
    const char* fix;
    const char* key;   /* of the fact that is wrong; empty for the structure as a whole */
    const char* found; /* what was read, and what was expected instead; either may be empty */
    const char* expected;
    uint32_t severity;  /* QUORLIN_NOTE and so on */
    uint32_t structure; /* its index; QUORLIN_NO_STRUCTURE for the table as a whole */
    uint32_t offset;    /* of the wrong bytes in the table */
    uint32_t size;      /* 0 if the finding is on the structure or the table as a whole */
} quorlin_finding;
typedef void (*quorlin_take_finding)(const quorlin_finding* finding, void* context);

/* Checks a table by all rules. Status: OK, NO_MEMORY, NULL_POINTER. */
QUORLIN_API quorlin_status quorlin_check(const quorlin_fact_table* table, quorlin_take_finding take, void* context);

enum {
    QUORLIN_REMOVED = 0,
    QUORLIN_ADDED = 1,
    QUORLIN_CHANGED = 2,
    QUORLIN_REPLACED = 3, /* the place has another part, by its serial or part number */
    QUORLIN_MOVED = 4     /* the part was at another place, which structure_a is */
};

/* A fact that differs, or a run of bytes. */
typedef struct quorlin_fact_change {
    const char* key;
    const char* name;
    const char* a; /* as people read it, or hexadecimal digits; null where the structure doesn't have the fact */
    const char* b;
    int32_t record; /* of a fact in a list; otherwise -1 */
    int32_t offset; /* of a run of bytes in its structure; otherwise -1 */
} quorlin_fact_change;

typedef struct quorlin_difference {
    uint32_t change;      /* QUORLIN_REMOVED and so on */
    uint32_t structure_a; /* an index in each table; QUORLIN_NO_STRUCTURE where there is none */
    uint32_t structure_b;
    const char* place; /* its locator or designation; may be empty */
    const char* from;  /* of a moved part, where it was */
    const quorlin_fact_change* facts;
    size_t fact_count;
} quorlin_difference;
typedef void (*quorlin_take_difference)(const quorlin_difference* difference, void* context);

/* Compares two tables. Structures are paired by what they are, so that other handles or another order are no
 * difference. Leaves out the facts with the `ignored` keys, of which there are `ignored_count`.
 * Status: OK, BAD_VALUE for a key that no fact has, NO_MEMORY, NULL_POINTER. */
QUORLIN_API quorlin_status quorlin_diff(const quorlin_fact_table* a, const quorlin_fact_table* b,
                                        const char* const* ignored, size_t ignored_count, quorlin_take_difference take,
                                        void* context);

/* Copies the table's bytes to `out`, which has room for them, with pseudonyms in place of serial numbers, asset tags,
 * UUIDs and MAC addresses. Under one key, which has 16 bytes or more, equal values stay equal. Structures of unknown
 * types are blanked unless `keep_vendor` isn't 0. After a failure `out` must not be given away.
 * Status: OK, BAD_VALUE for a short key, NO_MEMORY, NULL_POINTER, NO_TABLE if the system has no HMAC-SHA-256. */
QUORLIN_API quorlin_status quorlin_redact(const quorlin_fact_table* table, const void* key, size_t key_size,
                                          int keep_vendor, void* out);

/* A status in words, for any number. Constant text. */
QUORLIN_API const char* quorlin_status_text(quorlin_status status);
/* The version of the library, as "1.1.0". Constant text. */
QUORLIN_API const char* quorlin_version(void);

#ifdef __cplusplus
}
#endif
#endif
