/* The C interface: an SMBIOS table as items, for any language that can call a C function.
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
    QUORLIN_BAD_VALUE = 2,      /* an index after the last item, options of an unknown size */
    QUORLIN_NO_MEMORY = 3,      /* out of memory */
    QUORLIN_NULL_POINTER = 4,   /* a null argument */
    QUORLIN_NO_TABLE = 5,       /* the machine has no table, or doesn't let this user read it */
    QUORLIN_NO_MORE = 7,        /* after the last item, or no item found */
    QUORLIN_BUSY = 8,           /* the process uses the package interface at this time: close its packages first */
    QUORLIN_NO_IMAGE = 9,       /* the file can't be read, or file or memory have no table in any known form */
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
    uint32_t size;      /* sizeof(quorlin_options) */
    uint32_t signature; /* of an image: the processor's, EAX of CPUID leaf 1; a few texts depend on it */
    uint8_t smbios_major, smbios_minor; /* of a bare table, which doesn't state its version; 0.0 is taken as 3.0 */
    uint8_t use_driver; /* of this machine: not 0 to go on to physical memory if the system offers no table; on
                           Windows that installs the kernel driver, on Linux it reads /dev/mem */
    uint8_t type_148;   /* not 0 to decode type 148 too, firmware versions of a vendor, after all others */
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

/* A status in words, for any number. Constant text. */
QUORLIN_API const char* quorlin_status_text(quorlin_status status);
/* The version of the library, as "1.1.0". Constant text. */
QUORLIN_API const char* quorlin_version(void);

#ifdef __cplusplus
}
#endif
#endif
