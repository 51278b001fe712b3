// Functions of the wrapper's base class and its helpers that this applet does not use.

#include "entry/FgLoomWrapperImpl.h"
#include "entry/LiveObjects.h"
#include "support/Fg_Log.h"
#include "support/temporary_folder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

TEST(UnusedBaseFunctions, CachesReadAndWriteElementsOfTheRecordsWidth) {
    const auto copyOne = [](auto cache, auto record) { // the value into element 1, and element 2 out
        FgLoomWrapper::setFieldCache(cache.data(), &record);
        EXPECT_EQ(cache[1], record.value);
        record.index = 2;
        FgLoomWrapper::getFieldCache(cache.data(), &record);
        EXPECT_EQ(record.value, cache[2]);
    };
    copyOne(std::array<std::uint32_t, 3>{1, 2, 3}, FieldParameterInt_s{7, 1});
    copyOne(std::array{0.5, 1.5, 2.5}, FieldParameterDouble_s{-4.5, 1});
    const std::pair<FgParamTypes, std::size_t> widths[] = {
        {FG_PARAM_INT32, 4},  {FG_PARAM_UINT32, 4}, {FG_PARAM_INT64, 8},
        {FG_PARAM_UINT64, 8}, {FG_PARAM_DOUBLE, 8}, {FG_PARAM_TEXT, 0},
    };
    for (const auto& [tag, width] : widths) {
        // Two elements from the second on.
        std::string cache(24, '.'), given(16, 'x'), taken(16, '.'), expected = cache;
        std::fill_n(expected.begin() + static_cast<std::ptrdiff_t>(width), 2 * width, 'x');
        FieldParameterAccess run{tag, 1, 2, given.data()}, nowhere{tag, 0, 3, nullptr};
        FgLoomWrapper::setFieldCache(cache.data(), &run);
        FgLoomWrapper::setFieldCache(cache.data(), &nowhere);
        FgLoomWrapper::setFieldCache(cache.data(), static_cast<FieldParameterAccess*>(nullptr));
        FgLoomWrapper::getFieldCache(cache.data(), &nowhere);
        EXPECT_EQ(cache, expected) << tag;
        run.values = taken.data();
        FgLoomWrapper::getFieldCache(cache.data(), &run);
        EXPECT_EQ(taken, std::string(2 * width, 'x') + std::string(16 - 2 * width, '.')) << tag;
    }
    std::uint32_t word = 5;
    FgLoomWrapper::setFieldCache(&word, static_cast<FieldParameterInt_s*>(nullptr));
    EXPECT_EQ(word, 5u);
}

TEST(UnusedBaseFunctions, TemporaryFilesAreCreatedEmptyAndDeleted) {
    const int before = dup(STDERR_FILENO);
    close(before);
    char* name = FgLoomWrapper::createTempFile();
    ASSERT_NE(name, nullptr);
    const std::filesystem::path file = name;
    EXPECT_EQ(file.extension(), ".tiff");
    EXPECT_EQ(std::filesystem::file_size(file), 0u);
    FgLoomWrapper::deleteTempFile(name);
    EXPECT_FALSE(std::filesystem::exists(file));
    FgLoomWrapper::deleteTempFile(nullptr);
    const int after = dup(STDERR_FILENO);
    close(after);
    EXPECT_EQ(after, before) << "a descriptor is left open";
}

TEST(UnusedBaseFunctions, EventMasksFollowTheOrderOfTheDesign) {
    FgLoomWrapperImpl wrapper(1, true);
    int number = 0;
    for (; const TslEvent* event = TslGetEvent(wrapper.designHandle(), number); ++number) {
        const std::uint64_t mask = std::uint64_t{1} << number;
        EXPECT_EQ(wrapper.FgLoomWrapper::Fg_getEventMask(event->name), mask);
        EXPECT_STREQ(wrapper.FgLoomWrapper::Fg_getEventName(mask), event->name);
    }
    EXPECT_GT(number, 1);
    for (const char* unknown : {"", "FG_OVERFLOW_CAM0", static_cast<const char*>(nullptr)})
        EXPECT_EQ(wrapper.FgLoomWrapper::Fg_getEventMask(unknown), 0u);
    for (const std::uint64_t none : {std::uint64_t{0}, std::uint64_t{3}, std::uint64_t{1} << number})
        EXPECT_EQ(wrapper.FgLoomWrapper::Fg_getEventName(none), nullptr);
}

TEST(UnusedBaseFunctions, MissingFunctionsAreNamed) {
    FgLoomWrapperImpl wrapper(1, true);
    const std::pair<const char*, std::function<void()>> lacking[] = {
        {"processChannelToDma", [&] { wrapper.processChannelToDma(0, 0); }},
        {"mapDmaToFormat", [&] { wrapper.mapDmaToFormat(0); }},
        {"setDmaAlignment", [&] { wrapper.setDmaAlignment(0, 0); }},
        {"getDmaAlignment", [&] { wrapper.getDmaAlignment(0); }},
    };
    for (const auto& [name, call] : lacking) {
        std::string text;
        try {
            call();
        } catch (const std::runtime_error& error) {
            text = error.what();
        }
        EXPECT_EQ(text, std::string(name) + "() is not implemented.");
    }
    // Without a runtime an access does nothing and reports nothing.
    std::uint32_t value = 5;
    EXPECT_EQ(wrapper.setUnwrappedParameter(1, &value, 0), FG_OK);
    EXPECT_EQ(wrapper.getUnwrappedParameter(1, &value, 0), FG_OK);
    EXPECT_EQ(value, 5u);
}

TEST(UnusedBaseFunctions, ObjectsBeyondTheListAreFound) {
    std::vector<std::unique_ptr<FgLoomWrapperImpl>> wrappers;
    std::vector<const FgLoomWrapper*> objects;
    for (int i = 0; i < 70; ++i) { // the list has 64 slots
        wrappers.push_back(std::make_unique<FgLoomWrapperImpl>(1, true));
        objects.push_back(wrappers.back().get());
    }
    for (const FgLoomWrapper* object : objects)
        EXPECT_TRUE(LiveObjects::has(object));
    wrappers.clear();
    for (const FgLoomWrapper* object : objects)
        EXPECT_FALSE(LiveObjects::has(object));
}

TEST(UnusedBaseFunctions, TextLogWritesNothing) {
    const support::TemporaryFolder folder;
    const std::string file = folder / "x.log";
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    {
        Fg_Log log(file.c_str());
        log.WriteWelcome();
        log.Func("name");
        log.UsrDbg("%d", 1);
        log.Info("text");
        log.Info("text", 1);
        log.Error("text");
        log.ErrorInt("text", "name", 1);
        log.ErrorDouble("text", "name", 1.5);
        const std::string stamp = log.GetTimestamp();
        EXPECT_EQ(stamp.find('\n'), 24u) << stamp;
    }
    EXPECT_EQ(testing::internal::GetCapturedStdout() + testing::internal::GetCapturedStderr(), "");
    EXPECT_FALSE(std::filesystem::exists(file));
}

} // namespace
