// Keys: the standard's names in snake_case.
#pragma once

#include <string_view>

// Calls `put` with each character of the key of a name. What is in parentheses is left out.
template <class Put>
constexpr void PutKey(std::string_view name, Put put) {
    bool isInside = false, isPending = false, isFirst = true;
    for (const char c : name) {
        if (c == '(') isInside = true;
        const bool isUpper = c >= 'A' && c <= 'Z';
        if (!isInside && (isUpper || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9'))) {
            if (isPending && !isFirst) put('_');
            isPending = isFirst = false;
            put(isUpper ? static_cast<char>(c - 'A' + 'a') : c);
        } else {
            isPending = true;
        }
        if (c == ')') isInside = false;
    }
}
