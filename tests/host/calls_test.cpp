// Calls that cannot work: each returns a clear code, and the next call works.

#include "open_station.h"

#include "vexo/fg_errors.h"

#include <nlohmann/json.hpp>

#include <dlfcn.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <thread>

namespace {

struct Calls : OpenStation {};

struct BadCall {
    const char* what;
    int code;
    std::function<int(vexo_station*)> call; /**< with a station, or null */
};

const char* const assignment = "FG_WIDTH=1024";
const char* const nothing = nullptr;

/** Each with a valid station; with a null station each is VEXO_ERR_ARGUMENT. */
std::vector<BadCall> badCalls() {
    static std::int64_t number;
    static std::uint64_t mask;
    static std::uint32_t element;
    static double real;
    static std::size_t size;
    static vexo_answer* answer;
    static vexo_event event;
    static vexo_picture picture;
    static vexo_parameter parameter;
    static vexo_entry entry;
    static vexo_range range;
    static char byte;
    const int width = 100; // FG_WIDTH
    return {
        {"id of null", VEXO_ERR_ARGUMENT, [](auto* s) { return vexo_id(s, nullptr); }},
        {"id of nothing", VEXO_ERR_NAME, [](auto* s) { return vexo_id(s, ""); }},
        {"unknown id", VEXO_ERR_NAME, [](auto* s) { return vexo_get_int(s, 77777777, &number); }},
        {"id 0", VEXO_ERR_NAME, [](auto* s) { return vexo_get_int(s, 0, &number); }},
        {"no pointer for an int", VEXO_ERR_ARGUMENT,
         [=](auto* s) { return vexo_get_int(s, width, nullptr); }},
        {"no pointer for a uint", VEXO_ERR_ARGUMENT,
         [=](auto* s) { return vexo_get_uint(s, width, nullptr); }},
        {"no pointer for a double", VEXO_ERR_ARGUMENT,
         [=](auto* s) { return vexo_get_double(s, width, nullptr); }},
        {"no size", VEXO_ERR_ARGUMENT, [=](auto* s) { return vexo_get_text(s, width, &byte, nullptr); }},
        {"no buffer", VEXO_ERR_ARGUMENT,
         [=](auto* s) {
             size = 9;
             return vexo_get_text(s, width, nullptr, &size);
         }},
        {"no text", VEXO_ERR_ARGUMENT, [=](auto* s) { return vexo_set_text(s, width, nullptr); }},
        {"set of an unknown id", VEXO_ERR_NAME, [](auto* s) { return vexo_set_double(s, 77777777, 1); }},
        {"no elements", VEXO_ERR_ARGUMENT, [=](auto* s) { return vexo_set_field(s, width, 0, 1, nullptr); }},
        {"no field", VEXO_ERR_KIND, [=](auto* s) { return vexo_get_field(s, width, 0, 1, &element); }},
        {"index", VEXO_ERR_NAME, [](auto* s) { return vexo_parameter_at(s, 100000, &parameter); }},
        {"no pointer for a description", VEXO_ERR_ARGUMENT,
         [=](auto* s) { return vexo_describe(s, width, nullptr); }},
        {"entry of a number", VEXO_ERR_KIND, [=](auto* s) { return vexo_entry_at(s, width, 0, &entry); }},
        {"range of a text", VEXO_ERR_KIND,
         [](auto* s) { return vexo_get_range(s, vexo_id(s, "FG_LUT_CUSTOM_FILE"), &range); }},
        {"no list", VEXO_ERR_ARGUMENT, [](auto* s) { return vexo_set_all(s, nullptr, 1, VEXO_GIVEN_ORDER); }},
        {"null in a list", VEXO_ERR_ARGUMENT,
         [](auto* s) { return vexo_set_all(s, &nothing, 1, VEXO_GIVEN_ORDER); }},
        {"order", VEXO_ERR_ARGUMENT, [](auto* s) { return vexo_set_all(s, &assignment, 1, 2); }},
        {"file", VEXO_ERR_ARGUMENT, [](auto* s) { return vexo_load(s, nullptr); }},
        {"no pointer for the document", VEXO_ERR_ARGUMENT, [](auto* s) { return vexo_document(s, nullptr); }},
        {"limits of nothing", VEXO_ERR_NAME,
         [](auto* s) { return vexo_ask_limits(s, "FG_X", nullptr, nullptr, &answer); }},
        {"no pointer for limits", VEXO_ERR_ARGUMENT,
         [](auto* s) { return vexo_ask_limits(s, "FG_WIDTH", nullptr, nullptr, nullptr); }},
        {"limits of an assignment", VEXO_ERR_VALUE,
         [](auto* s) { return vexo_ask_limits(s, "FG_WIDTH=4", nullptr, nullptr, &answer); }},
        {"open quote", VEXO_ERR_VALUE,
         [](auto* s) { return vexo_ask_limits(s, "FG_WIDTH", "FG_HEIGHT='5", nullptr, &answer); }},
        {"why of no value", VEXO_ERR_VALUE,
         [](auto* s) { return vexo_ask_why(s, "FG_WIDTH=wide", nullptr, &answer); }},
        {"plan of null", VEXO_ERR_ARGUMENT, [](auto* s) { return vexo_ask_plan(s, &nothing, 1, &answer); }},
        {"check of no file", VEXO_ERR_FILE,
         [](auto* s) { return vexo_ask_check(s, "/nonexistent.mcf", &answer); }},
        {"clock", VEXO_ERR_ARGUMENT, [](auto* s) { return vexo_clock(s, -1); }},
        {"advance without end", VEXO_ERR_ARGUMENT,
         [](auto* s) { return vexo_advance(s, ~std::uint64_t{0}); }},
        {"input of a wave", VEXO_ERR_NAME, [](auto* s) { return vexo_wave(s, "GPI_99=high"); }},
        {"wave", VEXO_ERR_VALUE, [](auto* s) { return vexo_wave(s, "GPI_0=hihg"); }},
        {"station file", VEXO_ERR_FILE, [](auto* s) { return vexo_set_up(s, "/nonexistent.json"); }},
        {"station text", VEXO_ERR_VALUE,
         [](auto* s) { return vexo_set_up_text(s, "{\"station\": 1, \"belt\": 3}", nullptr); }},
        {"event", VEXO_ERR_NAME,
         [](auto* s) { return vexo_event_mask(s, "FG_TRIGGER_INPUT2_RISNG", &mask); }},
        {"event's index", VEXO_ERR_NAME,
         [](auto* s) {
             const char* name = nullptr;
             return vexo_event_at(s, 1000, &name, &mask);
         }},
        {"negative time", VEXO_ERR_ARGUMENT,
         [](auto* s) { return vexo_wait_event(s, 0, -1, -1, &event, nullptr); }},
        {"no time", VEXO_ERR_ARGUMENT,
         [](auto* s) {
             return vexo_wait_event(s, 0, std::numeric_limits<double>::quiet_NaN(), -1, &event, nullptr);
         }},
        {"no frames", VEXO_ERR_ARGUMENT, [](auto* s) { return vexo_start(s, 0, VEXO_KEEP); }},
        {"memory", VEXO_ERR_ARGUMENT, [](auto* s) { return vexo_start(s, 1, 7); }},
        {"no acquisition", VEXO_ERR_STATE, [](auto* s) { return vexo_wait_picture(s, 0, 1, -1, &picture); }},
        {"nothing to render", VEXO_ERR_STATE, [](auto* s) { return vexo_render(s, 1, &real, 8); }},
        {"nothing to release", VEXO_ERR_STATE, [](auto* s) { return vexo_release(s, 1); }},
    };
}

TEST_F(Calls, BadOnesHaveACodeAndWords) {
    for (const BadCall& bad : badCalls()) {
        SCOPED_TRACE(bad.what);
        EXPECT_EQ(bad.call(handle), bad.code) << vexo_last_error();
        EXPECT_EQ(vexo_last_code(), bad.code);
        EXPECT_FALSE(std::string(vexo_last_error()).empty());
        EXPECT_LT(bad.call(nullptr), 0);
        EXPECT_EQ(station.get<int>("FG_WIDTH"), 1024);
    }
}

TEST_F(Calls, AFailedSearchIsTheResultOfTheNextCall) {
    EXPECT_EQ(vexo_set_int(handle, vexo_id(handle, "FG_WITH"), 4), VEXO_ERR_NAME);
    EXPECT_TRUE(lastErrorHas("did you mean FG_WIDTH?")) << vexo_last_error();
    EXPECT_NE(std::string(vexo_last_details()).find("\"suggestions\":[\"FG_WIDTH\"]"), std::string::npos);
    std::int64_t value = 0;
    EXPECT_EQ(vexo_get_int(handle, vexo_id(handle, "FG_WITH"), &value), VEXO_ERR_NAME);
}

TEST_F(Calls, EachThreadHasItsOwnError) {
    EXPECT_EQ(vexo_id(handle, "FG_WITH"), VEXO_ERR_NAME);
    std::thread([&] {
        EXPECT_EQ(vexo_last_code(), VEXO_OK);
        EXPECT_EQ(vexo_clock(handle, 5e9), VEXO_ERR_ARGUMENT);
    }).join();
    EXPECT_EQ(vexo_last_code(), VEXO_ERR_NAME);
    EXPECT_TRUE(lastErrorHas("FG_WITH"));
}

TEST_F(Calls, ThreadsMayShareAStation) {
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 3; ++thread)
        threads.emplace_back([&, thread] {
            for (int i = 0; i < 300; ++i) {
                const std::int64_t width = 4 * (1 + (i + thread) % 256);
                ASSERT_EQ(vexo_set_int(handle, id("FG_WIDTH"), width), VEXO_OK) << vexo_last_error();
                std::int64_t read = 0;
                ASSERT_EQ(vexo_get_int(handle, id("FG_WIDTH"), &read), VEXO_OK);
                ASSERT_TRUE(read % 4 == 0 && read >= 4 && read <= 1024) << read;
                vexo_answer* answer = nullptr;
                if (i % 100 == 0) {
                    ASSERT_EQ(vexo_ask_limits(handle, "FG_XOFFSET", nullptr, nullptr, &answer), VEXO_OK);
                }
                vexo_answer_free(answer);
            }
        });
    for (std::thread& thread : threads)
        thread.join();
}

TEST(Opening, RefusesWhatItDoesNotKnow) {
    vexo_station* opened = reinterpret_cast<vexo_station*>(1);
    vexo_options options{};
    EXPECT_EQ(vexo_open(&options, &opened), VEXO_ERR_ARGUMENT) << "no size";
    EXPECT_EQ(opened, nullptr);
    EXPECT_EQ(vexo_open(nullptr, nullptr), VEXO_ERR_ARGUMENT);
    options.size = sizeof options;
    options.board = 3;
    EXPECT_EQ(vexo_open(&options, &opened), VEXO_ERR_ARGUMENT);
    options.board = VEXO_VIRTUAL;
    options.flags = 4;
    EXPECT_EQ(vexo_open(&options, &opened), VEXO_ERR_ARGUMENT);
    options.flags = 0;
    options.applet = "/nonexistent/libapplet.so";
    EXPECT_EQ(vexo_open(&options, &opened), VEXO_ERR_LIBRARY);
    EXPECT_TRUE(lastErrorHas("libapplet.so was looked for in /nonexistent")) << vexo_last_error();
    options.applet = nullptr;
    options.library_dir = "/nonexistent";
    EXPECT_EQ(vexo_open(&options, &opened), VEXO_ERR_LIBRARY);
    options.library_dir = nullptr;
    EXPECT_EQ(vexo_open(&options, &opened), VEXO_OK) << "a failed opening chooses no folder";
    vexo_close(opened);
    options.library_dir = "/nonexistent";
    EXPECT_EQ(vexo_open(&options, &opened), VEXO_ERR_LIBRARY);
    EXPECT_TRUE(lastErrorHas("cannot load those of /nonexistent as well")) << vexo_last_error();
    options.library_dir = nullptr;
    options.station = "/nonexistent.json";
    EXPECT_EQ(vexo_open(&options, &opened), VEXO_ERR_FILE);
    const std::string file = testing::TempDir() + "wrong_station.json";
    std::ofstream(file) << "no JSON";
    options.station = file.c_str();
    EXPECT_EQ(vexo_open(&options, &opened), VEXO_ERR_VALUE);
    EXPECT_TRUE(lastErrorHas("wrong_station.json")) << vexo_last_error();
    std::filesystem::remove(file);
    vexo_close(nullptr);
    EXPECT_EQ(opened, nullptr);
}

TEST(Opening, AProcessHasOneKindOfBoard) {
    vexo_options options{};
    options.size = sizeof options;
    options.board = VEXO_SYSTEM;
    vexo_station* opened = nullptr;
    {
        const vexo::Station virtualBoard = vexo::Station::virtualBoard();
        EXPECT_EQ(vexo_open(&options, &opened), VEXO_ERR_LIBRARY) << "not the board that is loaded";
        EXPECT_TRUE(lastErrorHas("virtual-board/libvexo_hw.so, and a board of the system cannot"))
            << vexo_last_error();
    }
    // A library of the same name, as a board of the system has it.
    const std::string here = vexo::Station::offline().info();
    const std::filesystem::path file = nlohmann::json::parse(here).at("files").at(0).get<std::string>();
    const std::filesystem::path other = std::filesystem::path(testing::TempDir()) / file.filename();
    std::filesystem::copy_file(file, other, std::filesystem::copy_options::overwrite_existing);
    void* const loaded = dlopen(other.c_str(), RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(loaded, nullptr) << dlerror();
    options.board = VEXO_VIRTUAL;
    EXPECT_EQ(vexo_open(&options, &opened), VEXO_ERR_LIBRARY);
    EXPECT_TRUE(lastErrorHas(other.string())) << vexo_last_error();
    dlclose(loaded);
    std::filesystem::remove(other);
    EXPECT_EQ(vexo_open(&options, &opened), VEXO_OK) << vexo_last_error();
    vexo_close(opened);
}

TEST(Opening, OfflineThereAreParametersAndNoBoard) {
    const vexo::Station station = vexo::Station::offline();
    station["FG_WIDTH"] = 2048;
    EXPECT_EQ(station.get<int>("FG_WIDTH"), 2048);
    EXPECT_TRUE(station["FG_XOFFSET"].limits().range);
    std::uint64_t tick = 0;
    EXPECT_EQ(vexo_now(station.handle(), &tick), VEXO_ERR_NOT_VIRTUAL);
    EXPECT_EQ(vexo_start(station.handle(), 1, VEXO_KEEP), VEXO_ERR_NOT_VIRTUAL);
    EXPECT_EQ(vexo_save(station.handle(), "x.mcf"), VEXO_ERR_STATE);
    EXPECT_EQ(vexo_set_up(station.handle(), "/nonexistent.json"), VEXO_ERR_NOT_VIRTUAL);
    EXPECT_EQ(vexo_set_up_text(station.handle(), "{", nullptr), VEXO_ERR_NOT_VIRTUAL);
    EXPECT_NE(station.info().find("\"board\":\"none\""), std::string::npos);
}

TEST(Opening, AStationThatOnlyLooksWritesNothing) {
    for (const vexo_board board : {VEXO_VIRTUAL, VEXO_OFFLINE}) {
        SCOPED_TRACE(board);
        vexo_options options{};
        options.board = board;
        options.flags = VEXO_LOOK;
        vexo::Station station(options);
        vexo_station* const handle = station.handle();
        const int width = vexo_id(handle, "FG_WIDTH");
        const auto before = station.get<int>("FG_WIDTH");
        const std::string file = testing::TempDir() + "look.mcf";
        std::vector<int> codes;
        const std::uint32_t element = 1;
        codes.push_back(vexo_set_int(handle, width, 512));
        codes.push_back(vexo_set_int(handle, width, -1));
        codes.push_back(vexo_set_text(handle, width, "512"));
        codes.push_back(vexo_set_field(handle, vexo_id(handle, "FG_LUT_VALUE_RED"), 0, 1, &element));
        codes.push_back(vexo_set_all(handle, &assignment, 1, VEXO_ANY_ORDER));
        if (board == VEXO_VIRTUAL) {
            station.save(file);
            codes.push_back(vexo_start(handle, 1, VEXO_KEEP));
            codes.push_back(
                vexo_set_up_text(handle, R"({"station": 1, "parameters": {"FG_WIDTH": 512}})", nullptr));
        }
        codes.push_back(vexo_load(handle, file.c_str()));
        EXPECT_EQ(codes, std::vector<int>(codes.size(), VEXO_ERR_STATE));
        EXPECT_TRUE(board == VEXO_OFFLINE || lastErrorHas("VEXO_LOOK")) << vexo_last_error();
        EXPECT_EQ(station.get<int>("FG_WIDTH"), before);
        EXPECT_TRUE(station["FG_XOFFSET"].limits("FG_WIDTH=512").range) << "the scratch board may";
        std::filesystem::remove(file);
    }
}

/** The environment variable that names a station file. */
struct StationVariable {
    explicit StationVariable(const std::string& file) { setenv("VBOARD_STATION", file.c_str(), 1); }
    ~StationVariable() { unsetenv("VBOARD_STATION"); }
};

/** A station file, and the code of an opening with it. */
struct StationCase {
    const char* content; // null: there is no file
    int code;
    const char* words;
};

TEST(Opening, TakesTheStationFileOfTheOptionsOrElseOfTheEnvironment) {
    const std::string variable = testing::TempDir() + "of_variable.json",
                      option = testing::TempDir() + "of_option.json";
    std::ofstream(option) << R"({"station": 1, "parameters": {"FG_WIDTH": 512}})";
    for (const StationCase& row :
         {StationCase{R"({"station": 1, "parameters": {"FG_HEIGHT": 64}})", VEXO_OK, ""},
          StationCase{nullptr, VEXO_ERR_FILE, "VBOARD_STATION: "},
          StationCase{R"({"station": 1, "camera": 5})", VEXO_ERR_VALUE, R"(of_variable.json": camera)"},
          StationCase{R"({"station": 1, "parameters": {"FG_WIHT": 5}})", VEXO_ERR_NAME, "FG_WIDTH"},
          StationCase{R"({"station": 1, "parameters": {"FG_WIDTH": 5}})", FG_ERR_GRANULARITY,
                      "the nearest accepted value is 4"}}) {
        SCOPED_TRACE(row.words);
        std::filesystem::remove(variable);
        if (row.content != nullptr) std::ofstream(variable) << row.content;
        const StationVariable set(variable);
        vexo_options options{};
        options.size = sizeof options;
        vexo_station* opened = nullptr;
        EXPECT_EQ(vexo_open(&options, &opened), row.code);
        EXPECT_TRUE(row.code == VEXO_OK || lastErrorHas(row.words)) << vexo_last_error();
        vexo_close(opened);
        if (row.code == VEXO_OK) {
            EXPECT_EQ(vexo::Station::virtualBoard().get<int>("FG_HEIGHT"), 64);
        }
        const vexo::Station station = vexo::Station::virtualBoard(option);
        EXPECT_EQ(station.get<int>("FG_WIDTH"), 512);
        EXPECT_EQ(station.get<int>("FG_HEIGHT"), 1024) << "not that of the variable";
    }
    std::filesystem::remove(variable);
    std::filesystem::remove(option);
}

} // namespace
