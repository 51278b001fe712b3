/** The blocks of data that the library carries. */
#ifndef ENTRY_API_EMBEDDED_DATA_H
#define ENTRY_API_EMBEDDED_DATA_H

#include <cstddef>

extern "C" {
extern const unsigned char appletDesignImage[];
extern const unsigned char appletDesignImageEnd[];
extern const unsigned char appletIcon[];
extern const unsigned char appletIconEnd[];
}

/** The design image is only ever handed on whole; its pages are read by whoever looks inside. */
inline std::size_t designImageSize() {
    return static_cast<std::size_t>(appletDesignImageEnd - appletDesignImage);
}

inline std::size_t iconSize() { return static_cast<std::size_t>(appletIconEnd - appletIcon); }

#endif
