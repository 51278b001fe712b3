/** A station of libvexo for a test. */
#ifndef TESTS_HOST_OPEN_STATION_H
#define TESTS_HOST_OPEN_STATION_H

#include "host/vexo.hpp"

#include <gtest/gtest.h>

#include <string>

/** The station whose functions are called. */
struct OpenStation : testing::Test {
    vexo::Station station = vexo::Station::virtualBoard();
    vexo_station* handle = station.handle();

    int id(const char* name) const { return vexo_id(handle, name); }
};

inline bool lastErrorHas(const std::string& words) {
    return std::string(vexo_last_error()).find(words) != std::string::npos;
}

#endif
