// The XML document through the API: complete, as data; sizes and codes; its contents for a live tree.

#include "support/applet_fixture.h"
#include "support/faults.h"
#include "support/temporary_folder.h"

#include <gmock/gmock.h>

namespace {

using namespace support;
using testing::HasSubstr;

std::string documentData() { return fileBytes(TEST_DATA_DIR "/parameter_document.xml"); }

/** The document of a handle, read with the two calls. */
std::string documentOf(Fg_Struct* fg) {
    const auto& applet = host().applet();
    unsigned long size = 0;
    EXPECT_EQ(applet.Fg_getParameterInfoXML(fg, 0, nullptr, &size), 0);
    std::string text(size, '?');
    EXPECT_EQ(applet.Fg_getParameterInfoXML(fg, 0, text.data(), &size), 0);
    EXPECT_EQ(text.size(), size);
    EXPECT_EQ(text.find('\0'), size - 1);
    text.pop_back();
    return text;
}

void expectWhole(const std::string& document) {
    EXPECT_TRUE(
        document.ends_with("</Category>\n<Port Name=\"DevicePort\"></Port>\n</RegisterDescription>\n"));
    EXPECT_NE(document.find("<pFeature>FG_WIDTH</pFeature>"), document.npos);
}

class SlaveDocument : public ParameterTest {
protected:
    SlaveDocument() : ParameterTest(1) {}
};

TEST_F(SlaveDocument, IsTheCatalogue) {
    const std::string document = documentOf(grabber.fg());
    EXPECT_EQ(document.size(), 95287u);
    EXPECT_EQ(difference(linesOf(document), linesOf(documentData())), "");
}

class ExportedDocument : public ParameterTest {
protected:
    int call(int index, char* buffer, unsigned long* size) {
        grabber.set(FG_LINE_DOWNSCALE, 0u); // a different stored error, which each call replaces
        const int result = applet.Fg_getParameterInfoXML(grabber.fg(), index, buffer, size);
        EXPECT_EQ(lastError(), result);
        return result;
    }
};

TEST_F(ExportedDocument, SizesAndCodes) {
    unsigned long needed = 7;
    ASSERT_EQ(call(0, nullptr, &needed), 0);
    std::string buffer(needed + 8, '?');
    for (const unsigned long capacity : {1ul, needed - 1}) { // without room for the terminating null
        unsigned long size = capacity;
        EXPECT_EQ(call(0, buffer.data(), &size), FG_ERR_BUFFER);
        EXPECT_EQ(size, capacity);
    }
    unsigned long zero = 0;
    for (const int index : {0, 1, -1}) // checked before the tree
        EXPECT_EQ(call(index, buffer.data(), &zero), FG_ERR_BUFFER);
    for (const int index : {1, -1, 2147483647}) {
        EXPECT_EQ(call(index, buffer.data(), &needed), FG_ERR_NO_TRANSLATION);
        EXPECT_EQ(call(index, nullptr, &zero), FG_ERR_NO_TRANSLATION);
    }
    EXPECT_EQ(call(0, buffer.data(), nullptr), FG_ERR_INVALID_ARGUMENT);
    EXPECT_EQ(call(0, nullptr, nullptr), FG_ERR_INVALID_ARGUMENT);
    EXPECT_EQ(buffer, std::string(buffer.size(), '?')) << "a failure writes nothing";

    for (const unsigned long capacity : {needed, needed + 5}) {
        unsigned long size = capacity;
        EXPECT_EQ(call(0, buffer.data(), &size), 0);
        EXPECT_EQ(size, needed);
        EXPECT_EQ(buffer.find('\0'), needed - 1);
        EXPECT_EQ(buffer.substr(needed), std::string(8, '?'));
    }
}

TEST_F(ExportedDocument, ShowsCurrentLimitsAndAccess) {
    ASSERT_EQ(set(FG_LINEPERIODE, 123.456), 0);
    ASSERT_EQ(set(FG_LINETRIGGERMODE, 1), 0);
    const std::string document = documentOf(grabber.fg());
    EXPECT_THAT(document,
                HasSubstr("<pValue>FG_LINEEXPOSURE_Reg</pValue>\n<Min>0.512</Min>\n<Max>123.456</Max>"));
    EXPECT_THAT(document, HasSubstr("<IntReg Name=\"FG_LINETRIGGERINSRC_Reg\">\n<Address>8112</Address>\n"
                                    "<Length>4</Length>\n<AccessMode>RO</AccessMode>"));
    EXPECT_THAT(documentData(), HasSubstr("<Address>8112</Address>\n<Length>4</Length>\n<AccessMode>RW<"));
}

TEST_F(ExportedDocument, InstanceWithoutABoard) {
    applet_host::GrabberHandle offline;
    ASSERT_EQ(applet.Info(FG_INFO_CREATE_OFFLINE, 0, 0, nullptr, &offline.object), 0);
    expectWhole(documentOf(offline.fg()));
    EXPECT_EQ(applet.Info(FG_INFO_DESTROY_OFFLINE, 0, 0, offline.object, nullptr), 0);
}

TEST_F(ExportedDocument, ExcludesRegistersAndIncludesDesignParameters) {
    setVariable("VEXO_ENABLE_DRA", "1");
    EXPECT_EQ(documentOf(Grabber(0).fg()), documentOf(grabber.fg()));
    setVariable("VEXO_ENABLE_DLOOMA", "1");
    const std::string document = documentOf(Grabber(0).fg());
    EXPECT_THAT(document, HasSubstr("<pFeature>DLOOMA_Device1_Process0_Buffer_0_XLength</pFeature>"));
    EXPECT_THAT(document, HasSubstr("<IntReg Name=\"DLOOMA_Device1_Process0_Buffer_0_XLength_Reg\">"));
    EXPECT_EQ(document.find("DRA_"), std::string::npos);
    expectWhole(document);
}

} // namespace
