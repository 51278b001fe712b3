// Lookup table and processing: three tables of 14 bits in and 16 bits out, from a formula, a file, or entry
// by entry. A get reads the caches; the design is never read.

#include "catalogue/live_records.h"
#include "entry/sdk_parameters.h"
#include "entry/setter_tools.h"
#include "files/Fg_LutFileParser.h"
#include "image/lut_formula.h"

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <span>

using namespace catalogue;

/** One of the three tables: its cache, and the writer of the design's. */
struct FgLoomWrapperImpl::LutColor {
    LutTable FgLoomWrapperImpl::*cache;
    void (FgLoomWrapperImpl::*write)(const void* value, int dma, FgParamTypes type, bool raise);
};

constexpr FgLoomWrapperImpl::LutColor FgLoomWrapperImpl::lutRed{
    &FgLoomWrapperImpl::m_lutRed, &FgLoomWrapperImpl::loomSet_Process0_LookupTable_R_LUTcontent};
constexpr FgLoomWrapperImpl::LutColor FgLoomWrapperImpl::lutGreen{
    &FgLoomWrapperImpl::m_lutGreen, &FgLoomWrapperImpl::loomSet_Process0_LookupTable_G_LUTcontent};
constexpr FgLoomWrapperImpl::LutColor FgLoomWrapperImpl::lutBlue{
    &FgLoomWrapperImpl::m_lutBlue, &FgLoomWrapperImpl::loomSet_Process0_LookupTable_B_LUTcontent};

namespace {

/** The tables of a file, freed at the end. */
struct LoadedTables {
    LookupTable_s tables[3]{};

    LoadedTables() = default;
    LoadedTables(const LoadedTables&) = delete;
    LoadedTables& operator=(const LoadedTables&) = delete;
    ~LoadedTables() {
        for (const LookupTable_s& table : tables)
            std::free(table.lut);
    }
};

/** A shorter table leaves the rest of the cache as it was. */
void copyElements(const LookupTable_s& table, std::span<std::uint32_t> cache) {
    std::copy_n(table.lut, std::min<std::size_t>(table.nrOfElements, cache.size()), cache.begin());
}

} // namespace

// ---- The whole tables

void FgLoomWrapperImpl::writeLutTables() {
    // All three get the blue table; the other colours of a file are only stored in the caches.
    const FieldParameterAccess table{FG_PARAM_UINT32, 0, lutEntries, m_lutBlue.data()};
    for (const LutColor* color : {&lutRed, &lutGreen, &lutBlue})
        (this->*color->write)(&table, 0, FG_PARAM_FIELD_ACCESS, true);
}

void FgLoomWrapperImpl::applyProcessingLut() {
    if (m_lutType != LUT_TYPE_PROCESSING) return;
    computeLutTable(m_lutRed, lutInputBits, lutOutputBits,
                    {m_processingGain, m_processingGamma, m_processingOffset, m_processingInvert == FG_ON});
    m_lutGreen = m_lutRed;
    m_lutBlue = m_lutRed;
    writeLutTables();
}

void FgLoomWrapperImpl::loadCustomLutFile(const char* path) {
    if (m_lutType != LUT_TYPE_CUSTOM || *path == '\0') return;
    Fg_LutFileParser parser;
    if (!parser.checkFileExist(path)) refuse(FG_ERR_FILE_TYPE);
    LoadedTables loaded;
    LookupTable_s& red = loaded.tables[0];
    LookupTable_s& green = loaded.tables[1];
    LookupTable_s& blue = loaded.tables[2];
    if (parser.getLutFromFile(path, &red, &green, &blue) != 0) refuse(FG_ERR_SAVE_CONFIG);
    copyElements(red, m_lutRed);
    copyElements(green, m_lutGreen);
    copyElements(blue, m_lutBlue);
    writeLutTables();
}

void FgLoomWrapperImpl::saveLutFile(const char* path) {
    if (*path == '\0') return;
    const LookupTable_s red{m_lutRed.data(), 0, lutEntries, 0, 0};
    const LookupTable_s green{m_lutGreen.data(), 1, lutEntries, 0, 0};
    const LookupTable_s blue{m_lutBlue.data(), 2, lutEntries, 0, 0};
    if (Fg_LutFileParser().saveLutToFile(path, &red, &green, &blue) != 0) refuse(FG_ERR_SAVE_CONFIG);
}

// ---- Setters

void FgLoomWrapperImpl::publishProcessingAccess() {
    const std::uint32_t access =
        m_lutEnable == FG_ON && m_lutType == LUT_TYPE_PROCESSING ? anyTime : readOnly;
    for (const std::size_t parameter : {indexOf(FG_PROCESSING_GAIN), indexOf(FG_PROCESSING_GAMMA),
                                        indexOf(FG_PROCESSING_OFFSET), indexOf(FG_PROCESSING_INVERT)})
        publishAccess(recordAt(parameter), access);
}

void FgLoomWrapperImpl::set_FG_LUT_ENABLE(std::uint32_t value) {
    requireEntry(enumOnOff, value);
    Replacement stored(m_lutEnable, value);
    publishProcessingAccess();
    loomSet_Process0_LookupTable_EnableLUT_Value(value);
    stored.keep();
}

void FgLoomWrapperImpl::set_FG_LUT_TYPE(std::uint32_t value) {
    requireEntry(enumLutType, value);
    Replacement stored(m_lutType, value);
    loadCustomLutFile(m_lutCustomFile.c_str());
    applyProcessingLut();
    stored.keep();
    publishAccess(recordAt(indexOf(FG_LUT_CUSTOM_FILE)), value == LUT_TYPE_CUSTOM ? anyTime : readOnly);
    publishProcessingAccess();
}

/** Stores a processing value and brings the tables up to date. */
template <typename T> void FgLoomWrapperImpl::setProcessing(T& member, T value) {
    Replacement stored(member, value);
    applyProcessingLut();
    stored.keep();
}

void FgLoomWrapperImpl::set_FG_PROCESSING_OFFSET(double value) {
    requireRange(value, limitsOf<Double>(FG_PROCESSING_OFFSET));
    setProcessing(m_processingOffset, value);
}

void FgLoomWrapperImpl::set_FG_PROCESSING_GAIN(double value) {
    requireRange(value, limitsOf<Double>(FG_PROCESSING_GAIN));
    setProcessing(m_processingGain, value);
}

void FgLoomWrapperImpl::set_FG_PROCESSING_GAMMA(double value) {
    requireRange(value, limitsOf<Double>(FG_PROCESSING_GAMMA));
    setProcessing(m_processingGamma, value);
}

void FgLoomWrapperImpl::set_FG_PROCESSING_INVERT(std::uint32_t value) {
    requireEntry(enumOnOff, value);
    setProcessing(m_processingInvert, value);
}

void FgLoomWrapperImpl::set_FG_LUT_CUSTOM_FILE(const char* path) {
    Replacement stored(m_lutCustomFile, std::string(path));
    loadCustomLutFile(path);
    stored.keep();
}

void FgLoomWrapperImpl::set_FG_LUT_SAVE_FILE(const char* path) {
    Replacement stored(m_lutSaveFile, std::string(path));
    saveLutFile(path);
    stored.keep();
}

// ---- Elements

void FgLoomWrapperImpl::setLut(const LutColor& color, FieldRecord field) {
    if (field.type == FG_PARAM_FIELD_ACCESS)
        setLutRun(color, *static_cast<const FieldParameterAccess*>(field.record));
    else
        setLutElement(color, *static_cast<const FieldParameterInt_s*>(field.record));
}

void FgLoomWrapperImpl::setLutElement(const LutColor& color, const FieldParameterInt_s& record) {
    if (record.index >= lutEntries || record.value > lutLargest) refuse(FG_ERR_OUT_OF_RANGE);
    Replacement stored((this->*color.cache)[record.index], record.value);
    (this->*color.write)(&record, 0, FG_PARAM_FIELD_INT, true);
    stored.keep();
}

void FgLoomWrapperImpl::setLutRun(const LutColor& color, const FieldParameterAccess& record) {
    if (!field_copy::isInside(record, lutEntries)) refuse(FG_ERR_OUT_OF_RANGE);
    if (field_copy::elementWidth(record.vtype) != sizeof(LutTable::value_type) &&
        record.vtype != FG_PARAM_FIELD_INT)
        refuse(FG_ERR_INVALID_ARGUMENT);
    if (record.count > 0 && record.values == nullptr) refuse(FG_ERR_INVALID_ARGUMENT);
    // Only the first element is tested; the others go to the design unchecked.
    if (record.count > 0 && *static_cast<const std::uint32_t*>(record.values) > lutLargest)
        refuse(FG_ERR_OUT_OF_RANGE);

    std::uint32_t* cache = (this->*color.cache).data();
    const auto backup = std::make_unique_for_overwrite<std::uint32_t[]>(record.count);
    FieldParameterAccess old = record;
    old.values = backup.get();
    getFieldCache(cache, &old);
    setFieldCache(cache, &record); // records of single elements are written to the design only
    try {
        (this->*color.write)(&record, 0, FG_PARAM_FIELD_ACCESS, true);
    } catch (...) {
        setFieldCache(cache, &old);
        throw;
    }
}

void FgLoomWrapperImpl::set_FG_LUT_VALUE_RED(FieldRecord field) { setLut(lutRed, field); }
void FgLoomWrapperImpl::set_FG_LUT_VALUE_GREEN(FieldRecord field) { setLut(lutGreen, field); }
void FgLoomWrapperImpl::set_FG_LUT_VALUE_BLUE(FieldRecord field) { setLut(lutBlue, field); }
