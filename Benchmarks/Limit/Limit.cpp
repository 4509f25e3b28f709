// Does only what no run of the program can avoid: reads a file of up to 64 KB, then copies together and writes as many
// bytes as an output has: quorlin_limit FILE BYTES.
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

static char table[64 << 10], block[64 << 10];

int main(int count, char** arguments) {
    if (count != 3) return 2;
    const int file = open(arguments[1], O_RDONLY | O_CLOEXEC);
    if (file < 0 || read(file, table, sizeof table) <= 0) return 1;
    close(file);
    constexpr size_t kPiece = 512;
    for (size_t left = std::strtoul(arguments[2], nullptr, 10); left != 0;) {
        const size_t size = std::min(left, sizeof block);
        for (size_t at = 0; at < size; at += kPiece) std::memcpy(block + at, table + at, std::min(kPiece, size - at));
        if (write(STDOUT_FILENO, block, size) != static_cast<ssize_t>(size)) return 1;
        left -= size;
    }
    return 0;
}
