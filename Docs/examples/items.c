/* Prints the items of a table image, or of this machine, by the C interface.
 *
 *     cc items.c $(pkg-config --cflags --libs quorlin) -o items-c
 *     ./items-c [IMAGE] */
#include <quorlin/quorlin_c.h>
#include <stdio.h>

int main(int argc, char** argv) {
    quorlin_table* table;
    const quorlin_status status =
        argc > 1 ? quorlin_open_file(argv[1], NULL, &table) : quorlin_open_machine(NULL, &table);
    if (status != QUORLIN_OK) {
        fprintf(stderr, "%s: %s\n", argc > 1 ? argv[1] : "this machine", quorlin_last_error());
        return 1;
    }
    quorlin_item item;
    while (quorlin_next(table, &item) == QUORLIN_OK) {
        if (item.kind == QUORLIN_ITEM)
            printf("  %s: %s\n", item.key, item.value);
        else
            printf("%s\n", item.key);
    }
    /* A lookup: which structure states the first serial number? */
    if (quorlin_find(table, "Serial Number", 0, &item) == QUORLIN_OK) {
        quorlin_item title;
        if (quorlin_get(table, item.structure, &title) == QUORLIN_OK)
            printf("First serial number: %s (%s)\n", item.value, title.key);
    }
    quorlin_close(table);
    return 0;
}
