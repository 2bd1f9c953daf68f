// The Arrow streams of the layers. OGRLayer keeps the stream, its schema and its end; the arrays are made
// here from the records, except where its own way by features is wanted.

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <exception>

#include "arrow_rows.h"
#include "vkm_layer.h"

namespace vemrado::gdal {

namespace {

constexpr const char* identifierOption = "INCLUDE_FID";
constexpr const char* batchSizeOption = "MAX_FEATURES_IN_BATCH";

}  // namespace

// The options that are known here; later versions of GDAL may have more.
bool VkmLayer::MakesArrays() const {
    const CPLStringList& options = m_aosArrowArrayStreamOptions;
    int known = 0;
    for (const char* option : {identifierOption, batchSizeOption})
        if (options.FindName(option) >= 0) ++known;
    return m_poAttrQuery == nullptr && options.Count() == known;
}

// A record that lies in a rectangle is in the filter without a look at its shape.
bool VkmLayer::IsInFilter(const Cursor& cursor, size_t record, const OGREnvelope& envelope) {
    if (m_poFilterGeom == nullptr) return true;
    if (envelope.Intersects(m_sFilterEnvelope) == 0) return false;
    if (m_bFilterIsEnvelope != 0 && m_sFilterEnvelope.Contains(envelope) != 0) return true;
    const std::unique_ptr<OGRFeature> feature(Make(cursor, record));
    return FilterGeometry(feature->GetGeometryRef()) != 0;
}

void VkmLayer::AddRow(ArrowRows& rows, Cursor& cursor) {
    const size_t record = cursor.next;
    const OGREnvelope envelope = Pass(cursor);
    if (!IsInFilter(cursor, record, envelope)) return;
    const Batch& batch = cursor.batch;
    rows.Identifier(cursor.passed);
    if (kind == lineLayer) {
        rows.Add(batch, batch.lines[record]);
    } else if (kind == pointLayer) {
        rows.Add(batch, batch.points[record]);
    } else {
        rows.Add(batch, batch.texts[record]);
    }
    if (sourceField >= 0) rows.String(sourceField, state.source.names[batch.source].c_str());
    rows.EndRow();
}

void VkmLayer::FillArray(ArrowArray& array) {
    const CPLStringList& options = m_aosArrowArrayStreamOptions;
    const int64_t wanted = std::max(1, std::atoi(options.FetchNameValueDef(batchSizeOption, "65536")));
    ArrowRows rows(*definition.Get(), options.FetchBool(identifierOption, true));
    if (reading == nullptr) reading = StartReading();
    while (rows.Rows() < wanted && !rows.Full() && OnRecord(*reading)) AddRow(rows, *reading);
    if (rows.Rows() == 0) return;
    m_nFeaturesRead += rows.Rows();
    rows.Export(&array);
}

int VkmLayer::GetNextArrowArray(ArrowArrayStream* stream, ArrowArray* array) {
    *array = {};
    try {
        if (!MakesArrays()) {
            const int result = OGRLayer::GetNextArrowArray(stream, array);
            if (result != 0) return result;
        } else {
            FillArray(*array);
        }
    } catch (const std::exception& error) {
        CPLError(CE_Failure, CPLE_OutOfMemory, "%s: %s", GetName(), error.what());
        return ENOMEM;
    }
    // Of a reading that failed the rows before the failure are handed out first.
    const bool ends = array->release == nullptr;
    return ends && reading != nullptr && reading->reader.State() == ReadState::failed ? EIO : 0;
}

}  // namespace vemrado::gdal
