/* Prints every fact of an image by the C interface, one a line, for compare.py:
 *
 *     list_facts IMAGE             absent facts as well
 *     list_facts --walk N IMAGE    walks N times over all facts and prints only their number, to measure the cost
 *
 * Fields are separated by tabs: structure, record, key, kind, state, unit, number, text, offset, size, bytes with the
 * string, words, sources. Texts and bytes are in hexadecimal. */
#include <inttypes.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "CInterface/quorlin_c.h"

static void print_hex(const void* bytes, size_t size) {
    size_t i;
    for (i = 0; i < size; i++) printf("%02x", ((const unsigned char*)bytes)[i]);
}

static void print_fact(const quorlin_fact_walk* walk, const quorlin_structure* structure, const quorlin_fact* fact) {
    const char *word, *source;
    uint32_t bit = 0, index = 0;
    printf("%" PRIu32 "\t%" PRId32 "\t%s\t%u\t%s\t%s\t", structure->index, fact->record, fact->key, fact->kind,
           quorlin_state_text(fact->state), quorlin_unit_text(fact->unit));
    if (fact->is_signed)
        printf("%" PRId64 "\t", (int64_t)fact->number);
    else
        printf("%" PRIu64 "\t", fact->number);
    print_hex(fact->text, fact->text_size);
    printf("\t%u\t%u\t", fact->offset, fact->size);
    print_hex(structure->bytes + fact->offset, fact->size);
    print_hex(fact->string, fact->string_size);
    printf("\t");
    while ((word = quorlin_walk_word(walk, &bit)) != NULL) printf("%s|", word);
    printf("\t");
    while ((source = quorlin_walk_source(walk, index++)) != NULL) printf("%s|", source);
    printf("\n");
}

int main(int argc, char** argv) {
    const int only_walks = argc == 4 && strcmp(argv[1], "--walk") == 0;
    long rounds = only_walks ? strtol(argv[2], NULL, 10) : 1;
    quorlin_fact_table* table;
    quorlin_fact_walk* walk;
    const quorlin_fact* fact;
    unsigned long facts = 0;
    if (argc < 2) return 2;
    if (quorlin_facts_open_file(argv[argc - 1], NULL, &table) != QUORLIN_OK) {
        fprintf(stderr, "%s: %s\n", argv[argc - 1], quorlin_last_error());
        return 1;
    }
    if (quorlin_walk_open(table, &walk) != QUORLIN_OK) return 1;
    for (; rounds > 0; rounds--) {
        uint32_t index;
        for (index = 0; quorlin_walk_begin(walk, index, !only_walks) == QUORLIN_OK; index++)
            for (; (fact = quorlin_walk_next(walk)) != NULL; facts++)
                if (!only_walks) print_fact(walk, quorlin_structure_at(table, index), fact);
    }
    if (only_walks) printf("%lu facts\n", facts);
    quorlin_walk_close(walk);
    quorlin_facts_close(table);
    return 0;
}
