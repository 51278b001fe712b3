// Parameters through libvexo: the same as through the exported functions of the applet.

#include "applet_host/AppletHost.h"
#include "open_station.h"

#include "vexo/fg_errors.h"
#include "vexo/fg_parameters.h"

#include <nlohmann/json.hpp>

#include <cstring>
#include <functional>
#include <limits>

namespace {

struct Parameters : OpenStation {};

TEST_F(Parameters, AreThoseOfTheExportedFunctions) {
    const applet_host::AppletHost host;
    applet_host::Session session(host);
    const auto& applet = host.applet();
    int numbers = 0;
    for (std::uint32_t i = 0; i < vexo_count(handle); ++i) {
        vexo_parameter known{};
        ASSERT_EQ(vexo_parameter_at(handle, i, &known), VEXO_OK);
        SCOPED_TRACE(known.name);
        EXPECT_EQ(known.id, applet.Fg_getParameterIdByName(session.fg(), known.name));
        EXPECT_EQ(vexo_id(handle, known.name), known.id);
        if (known.kind == VEXO_TEXT || known.kind == VEXO_FIELD || *known.read_effect != '\0') continue;
        union {
            std::uint32_t u32;
            std::int32_t i32;
            std::uint64_t u64;
            std::int64_t i64;
            double f64;
        } expected{};
        const int code = applet.Fg_getParameterWithType(session.fg(), known.id, &expected, 0, known.kind % 6);
        double value = -1;
        ASSERT_EQ(vexo_get_double(handle, known.id, &value), code);
        if (code != FG_OK) continue;
        ++numbers;
        switch (known.kind) {
        case VEXO_DOUBLE:
            EXPECT_EQ(value, expected.f64);
            break;
        case VEXO_INT64:
            EXPECT_EQ(value, static_cast<double>(expected.i64));
            break;
        case VEXO_UINT64:
            EXPECT_EQ(value, static_cast<double>(expected.u64));
            break;
        case VEXO_UINT32:
            EXPECT_EQ(value, expected.u32);
            break;
        default:
            EXPECT_EQ(value, expected.i32);
        }
    }
    EXPECT_GT(numbers, 100);
}

TEST_F(Parameters, ASetReachesTheBoard) {
    station.set("FG_WIDTH", 2048);
    EXPECT_EQ(station.get<int>("FG_WIDTH"), 2048);
    EXPECT_EQ(station["width"].get<std::uint16_t>(), 2048);
    EXPECT_EQ(station["fg_width"].get<std::string>(), "2048");
    const auto [minimum, maximum, step] = station["FG_XOFFSET"].range();
    EXPECT_EQ(maximum, 16384 - 2048);
    EXPECT_EQ(minimum, 0);
    EXPECT_EQ(step, 4);
}

TEST_F(Parameters, EnumerationsHaveNames) {
    const vexo::Parameter vantage = station["FG_VANTAGEPOINT"];
    const auto entries = vantage.entries();
    ASSERT_EQ(entries.size(), 4U);
    for (const vexo_entry& entry : entries)
        for (const std::string& text :
             {std::string(entry.symbol), std::string(entry.label), std::to_string(entry.value)}) {
            vantage.set(entries[entry.value == entries[0].value ? 1 : 0].value);
            vantage.set(text);
            EXPECT_EQ(vantage.get<int>(), entry.value) << text;
            EXPECT_EQ(vantage.get<std::string>(), entry.symbol);
        }
    EXPECT_EQ(vexo_set_text(handle, vantage.id(), "Bottom-Rihgt"), VEXO_ERR_VALUE);
    EXPECT_TRUE(lastErrorHas("did you mean FG_VANTAGEPOINT_BOTTOM_RIGHT")) << vexo_last_error();
}

/** A call whose number does not fit, and the code. */
TEST_F(Parameters, NumbersThatDoNotFitAreRefusedAndChangeNothing) {
    const int width = id("FG_WIDTH"), period = id("FG_LINEPERIODE"), file = id("FG_LUT_CUSTOM_FILE"),
              table = id("FG_LUT_VALUE_RED");
    ASSERT_GT(period, 0);
    ASSERT_GT(file, 0);
    ASSERT_GT(table, 0);
    const std::string before = station["FG_WIDTH"].get<std::string>();
    EXPECT_EQ(vexo_set_int(handle, width, -4), VEXO_ERR_VALUE);
    EXPECT_EQ(vexo_set_int(handle, width, std::int64_t{1} << 32), VEXO_ERR_VALUE);
    EXPECT_EQ(vexo_set_uint(handle, width, std::numeric_limits<std::uint64_t>::max()), VEXO_ERR_VALUE);
    EXPECT_EQ(vexo_set_double(handle, width, 2048.5), VEXO_ERR_VALUE);
    EXPECT_EQ(vexo_set_double(handle, width, std::numeric_limits<double>::quiet_NaN()), VEXO_ERR_VALUE);
    EXPECT_EQ(vexo_set_double(handle, width, 1e300), VEXO_ERR_VALUE);
    EXPECT_EQ(vexo_set_text(handle, width, "wide"), VEXO_ERR_VALUE);
    EXPECT_EQ(vexo_set_double(handle, period, std::numeric_limits<double>::quiet_NaN()), VEXO_ERR_VALUE);
    EXPECT_TRUE(lastErrorHas("FG_LINEPERIODE=nan: 'nan' is not a floating point number"))
        << vexo_last_error();
    EXPECT_EQ(station["FG_LINEPERIODE"].get<double>(), 200);
    EXPECT_EQ(vexo_set_int(handle, file, 1), VEXO_ERR_KIND);
    EXPECT_EQ(vexo_set_int(handle, table, 1), VEXO_ERR_KIND);
    EXPECT_EQ(station["FG_WIDTH"].get<std::string>(), before);
    EXPECT_EQ(vexo_set_double(handle, width, 2048), VEXO_OK);
    EXPECT_EQ(vexo_set_double(handle, period, 100.5), VEXO_OK);
    std::int64_t whole = -1;
    EXPECT_EQ(vexo_get_int(handle, period, &whole), VEXO_ERR_VALUE) << "a fraction is not cut off";
    EXPECT_EQ(vexo_get_int(handle, file, &whole), VEXO_ERR_KIND);
    EXPECT_EQ(vexo_get_int(handle, table, &whole), VEXO_ERR_KIND);
    EXPECT_EQ(whole, -1);
    EXPECT_THROW(station.get<std::int8_t>("FG_WIDTH"), std::out_of_range);
}

struct UnfitNumber {
    const char* name;
    double number;
    const char* nearest;
    const char* setBy; // "" for none
};

TEST_F(Parameters, ARefusalOfANumberThatDoesNotFitSaysWhatIsAccepted) {
    station.set({"FG_XOFFSET=64"});
    for (const UnfitNumber& row : {UnfitNumber{"FG_WIDTH", -1, R"({"value":4})", "minimum"},
                                   UnfitNumber{"FG_WIDTH", 4294967296.0, R"({"value":16320})", "FG_XOFFSET"},
                                   UnfitNumber{"FG_WIDTH", 2046.5, R"({"value":2048})", ""},
                                   UnfitNumber{"FG_XOFFSET", -4, R"({"value":0})", "minimum"}}) {
        SCOPED_TRACE(row.name + std::to_string(row.number));
        EXPECT_EQ(vexo_set_double(handle, id(row.name), row.number), VEXO_ERR_VALUE);
        const auto details = nlohmann::json::parse(vexo_last_details());
        EXPECT_EQ(details.value("nearest", nlohmann::json()).dump(), row.nearest) << details;
        EXPECT_EQ(details.at("requested").at("value"), row.number);
        EXPECT_EQ(details.at("limit").at("step"), 4);
        EXPECT_TRUE(lastErrorHas("the present limits are ") && lastErrorHas(row.setBy)) << vexo_last_error();
    }
    const char* const pair[] = {"FG_HEIGHT=8", "FG_WIDTH=-1"};
    const std::function<int()> sets[] = {[&] { return vexo_set_int(handle, id("FG_WIDTH"), -1); },
                                         [&] { return vexo_set_text(handle, id("FG_WIDTH"), "-1"); },
                                         [&] { return vexo_set_all(handle, pair, 2, VEXO_GIVEN_ORDER); }};
    for (const auto& set : sets) {
        EXPECT_EQ(set(), VEXO_ERR_VALUE);
        EXPECT_EQ(nlohmann::json::parse(vexo_last_details()).at("nearest").at("value"), 4);
    }
    EXPECT_EQ(station.get<int>("FG_HEIGHT"), 1024);
    EXPECT_EQ(vexo_set_int(handle, id("FG_VANTAGEPOINT"), std::int64_t{1} << 40), VEXO_ERR_VALUE);
    EXPECT_TRUE(lastErrorHas("the entries are FG_VANTAGEPOINT_TOP_LEFT")) << vexo_last_error();
}

TEST_F(Parameters, ATextNeedsItsSpace) {
    char text[64] = "untouched";
    std::size_t size = 4;
    EXPECT_EQ(vexo_get_text(handle, id("FG_VANTAGEPOINT"), text, &size), VEXO_ERR_SPACE);
    EXPECT_EQ(size, std::strlen("FG_VANTAGEPOINT_TOP_LEFT") + 1);
    EXPECT_STREQ(text, "untouched");
    size = 0;
    EXPECT_EQ(vexo_get_text(handle, id("FG_VANTAGEPOINT"), nullptr, &size), VEXO_ERR_SPACE);
    EXPECT_EQ(vexo_get_text(handle, id("FG_VANTAGEPOINT"), text, &size), VEXO_OK);
    EXPECT_STREQ(text, "FG_VANTAGEPOINT_TOP_LEFT");
}

TEST_F(Parameters, FieldsAreReadAndSetByElement) {
    const vexo::Parameter table = station["FG_LUT_VALUE_RED"];
    const std::uint32_t values[] = {7, 8, 9};
    const std::uint32_t last = table.describe().elements - 1;
    table.setElements(last - 2, values);
    EXPECT_EQ(table.elements(last - 3, 4).back(), 9U);
    EXPECT_EQ(table.elements(last - 2, 1).front(), 7U);
    std::uint32_t untouched = 5;
    EXPECT_EQ(vexo_get_field(handle, table.id(), last, 2, &untouched), VEXO_ERR_ARGUMENT);
    EXPECT_EQ(vexo_get_field(handle, table.id(), 0xffffffffU, 2, &untouched), VEXO_ERR_ARGUMENT);
    EXPECT_EQ(vexo_set_field(handle, table.id(), 0, 0, &untouched), VEXO_ERR_ARGUMENT);
    EXPECT_THROW(table.elements(0, 0), vexo::Error);
    EXPECT_TRUE(lastErrorHas("0 from element 0")) << vexo_last_error();
    EXPECT_EQ(vexo_set_field(handle, id("FG_WIDTH"), 0, 1, &untouched), VEXO_ERR_KIND);
    EXPECT_EQ(untouched, 5U);
}

TEST_F(Parameters, ManyAreSetAllOrNone) {
    using vexo::Error;
    station.set({"FG_WIDTH=2048", "FG_XOFFSET=64"});
    EXPECT_THROW(station.set({"FG_WIDTH=1024", "FG_XOFFSET=128", "FG_HEIGHT=0"}), Error);
    EXPECT_EQ(vexo_last_code(), FG_ERR_OUT_OF_RANGE);
    EXPECT_EQ(station.get<int>("FG_WIDTH"), 2048);
    EXPECT_EQ(station.get<int>("FG_XOFFSET"), 64);
    EXPECT_THROW(station.set({"FG_WIDTH=1024", "FG_HIGHT=16"}), Error);
    EXPECT_EQ(vexo_last_code(), VEXO_ERR_NAME);
    EXPECT_EQ(station.get<int>("FG_WIDTH"), 2048);

    const std::vector<std::string> dependent{"FG_WIDTH=16384", "FG_XOFFSET=0", "FG_HEIGHT=8"};
    EXPECT_THROW(station.set(dependent), Error);
    EXPECT_EQ(station.get<int>("FG_XOFFSET"), 64);
    station.set(dependent, VEXO_ANY_ORDER);
    EXPECT_EQ(station.get<int>("FG_WIDTH"), 16384);
    EXPECT_EQ(station.get<int>("FG_XOFFSET"), 0);
    EXPECT_THROW(station.set({"FG_WIDTH=16384", "FG_XOFFSET=4"}, VEXO_ANY_ORDER), Error);
    EXPECT_TRUE(lastErrorHas("nothing was set")) << vexo_last_error();
    EXPECT_EQ(station.get<int>("FG_WIDTH"), 16384);
}

TEST_F(Parameters, AFileKeepsAndRestoresThem) {
    const std::string file = testing::TempDir() + "host_parameters.mcf";
    station.set("FG_WIDTH", 512);
    station.save(file);
    station.set("FG_WIDTH", 1024);
    EXPECT_NE(station.losses(file).text.find("loses nothing"), std::string::npos);
    EXPECT_EQ(station.get<int>("FG_WIDTH"), 1024) << "a question changes nothing";
    station.load(file);
    EXPECT_EQ(station.get<int>("FG_WIDTH"), 512);
    EXPECT_EQ(vexo_load(handle, "/nonexistent.mcf"), VEXO_ERR_FILE);
    EXPECT_EQ(vexo_save(handle, "/nonexistent/x.mcf"), VEXO_ERR_FILE);
    EXPECT_EQ(vexo_save(handle, "no_such_suffix"), VEXO_ERR_ARGUMENT);
    std::remove(file.c_str());
    EXPECT_NE(station.document().find("<RegisterDescription"), std::string::npos);
}

TEST_F(Parameters, AnAssignmentOfAParameterSetsItsValue) {
    station.set({"FG_WIDTH=2048", "FG_HEIGHT=100", "FG_LINEPERIODE=150.4"});
    station["FG_HEIGHT"] = station["FG_WIDTH"];
    EXPECT_EQ(station.get<int>("FG_HEIGHT"), 2048);
    vexo::Parameter height = station["FG_HEIGHT"];
    const vexo::Parameter width = station["FG_WIDTH"];
    width = 512;
    height = width;
    EXPECT_EQ(station.get<int>("FG_HEIGHT"), 512);
    width = 1024;
    height = std::move(width);
    EXPECT_EQ(height.name() + "=" + height.get<std::string>(), "FG_HEIGHT=1024");
    const vexo::Station other = vexo::Station::offline();
    other["FG_LINEPERIODE"] = station["FG_LINEPERIODE"];
    EXPECT_EQ(other.get<double>("FG_LINEPERIODE"), 150.4);
    EXPECT_THROW(height = station["FG_LINEPERIODE"], vexo::Error) << "no whole number";

    const vexo::Parameter red = station["FG_LUT_VALUE_RED"], blue = station["FG_LUT_VALUE_BLUE"];
    const std::uint32_t elements[] = {7, 8, 9};
    red.setElements(4, elements);
    blue = red;
    EXPECT_EQ(blue.elements(0, red.describe().elements), red.elements(0, red.describe().elements));
    EXPECT_THROW(height = red, vexo::Error);
}

} // namespace
