// What the files of this folder share: the record and text forms behind the reading and writing of vectors.
#pragma once

#include <cstdio>

#include "core/vector.h"

namespace sigvex {

// What reading a record returns besides kFailure.
inline constexpr Status kEnd = 0, kRead = 1;

// Which pieces of a format are written.
struct Pieces {
  bool header = true, data = true;
};

// One text record from the stream's present position.
template <class T> Status read_text(Vector<T>& v, std::FILE& stream);

// One binary record, or a piece of it.
template <class T> Status write_record(const Vector<T>& v, std::FILE& stream, Pieces pieces);

// White space of the C locale, whatever locale the host has set.
inline bool is_space(int c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
inline bool is_digit(int c) { return c >= '0' && c <= '9'; }

}  // namespace sigvex
