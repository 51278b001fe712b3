/** The data blocks embedded in the library. */
#ifndef ENTRY_API_EMBEDDED_DATA_H
#define ENTRY_API_EMBEDDED_DATA_H

#include <cstddef>

extern "C" {
extern const unsigned char appletDesignImage[];
extern const unsigned char appletDesignImageEnd[];
extern const unsigned char appletIcon[];
extern const unsigned char appletIconEnd[];
}

/** The library itself never reads the design image: it passes on its address and size. */
inline std::size_t designImageSize() {
    return static_cast<std::size_t>(appletDesignImageEnd - appletDesignImage);
}

inline std::size_t iconSize() { return static_cast<std::size_t>(appletIconEnd - appletIcon); }

#endif
