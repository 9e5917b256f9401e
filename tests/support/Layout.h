// Layout.h - compares a record's size and the place of each member with numbers.
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <initializer_list>

namespace morvil::test {

struct Member {
    const char* name;
    std::size_t offset;
    std::size_t size;
    std::size_t expectedOffset;
    std::size_t expectedSize;
};

inline void expectLayout(const char* record, std::size_t size, std::size_t expectedSize, std::initializer_list<Member> members) {
    EXPECT_EQ(size, expectedSize) << record;
    for (const Member& member : members) {
        EXPECT_EQ(member.offset, member.expectedOffset) << "offset of " << record << "::" << member.name;
        EXPECT_EQ(member.size, member.expectedSize) << "size of " << record << "::" << member.name;
    }
}

}  // namespace morvil::test

#define MEMBER(record, name, offset, size) \
    morvil::test::Member { #name, offsetof(record, name), sizeof(record::name), offset, size }
