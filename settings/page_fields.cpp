#include "settings/page_fields.h"

#include "platform/text_field.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <utility>

namespace marvolen {
namespace {

struct TextField {
    std::string PageFields::*text;
    char (ChannelInfo::*field)[kTextFieldSize];
};

constexpr TextField kTextFields[] = {
    {&PageFields::host, &ChannelInfo::host},
    {&PageFields::port, &ChannelInfo::port},
    {&PageFields::userName, &ChannelInfo::userName},
    {&PageFields::password, &ChannelInfo::password},
    {&PageFields::netName, &ChannelInfo::netName},
    {&PageFields::recordPath, &ChannelInfo::recordPath},
};

bool IsBlank(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

}  // namespace

PageFields FieldsOf(const ChannelInfo& record) {
    PageFields fields;
    for (const auto& [text, field] : kTextFields) fields.*text = FieldText(record.*field);
    fields.maxSize = std::to_string(record.maxSizeMB);
    fields.cameraIndex = record.cameraIndex;
    fields.sizeIndex = record.sizeIndex;
    fields.rateIndex = record.rateIndex;
    return fields;
}

void Commit(const PageFields& fields, ChannelInfo& record) {
    for (const auto& [text, field] : kTextFields) {
        if (fields.*text != FieldText(record.*field)) SetFieldText(record.*field, fields.*text);
    }
    record.maxSizeMB = MaxSizeOf(fields.maxSize);
    record.cameraIndex = fields.cameraIndex;
    record.sizeIndex = fields.sizeIndex;
    record.rateIndex = fields.rateIndex;
}

std::int32_t MaxSizeOf(std::string_view text) {
    text.remove_prefix(
        static_cast<std::size_t>(std::ranges::find_if_not(text, IsBlank) - text.begin()));
    const bool isNegative = text.starts_with('-');
    if (isNegative || text.starts_with('+')) text.remove_prefix(1);
    if (text.empty() || text.front() < '0' || text.front() > '9') return 0;
    std::uint32_t value = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    const std::uint32_t most = std::numeric_limits<std::int32_t>::max();
    const std::uint32_t limit = isNegative ? most + 1 : most;
    if (result.ec != std::errc()) value = limit;
    value = std::min(value, limit);
    return static_cast<std::int32_t>(isNegative ? 0 - value : value);
}

void DefaultNetName(PageFields& fields) {
    if (fields.netName.empty() && !fields.host.empty()) fields.netName = "(" + fields.host + ")";
}

void Clear(PageFields& fields) {
    PageFields cleared;
    cleared.userName = "root";
    cleared.password = "tuvk";
    cleared.sizeIndex = 1;
    CopyFields(cleared, fields, FileFields::kWithout);
}

void CopyFields(const PageFields& source, PageFields& target, FileFields files) {
    PageFields copy = source;
    if (files == FileFields::kWithout) {
        copy.maxSize = std::move(target.maxSize);
        copy.recordPath = std::move(target.recordPath);
    }
    target = std::move(copy);
}

void MoveFields(std::span<PageFields> pages, std::size_t from, std::size_t to) {
    const auto begin = pages.begin();
    const auto at = [&](std::size_t k) { return begin + static_cast<std::ptrdiff_t>(k); };
    if (from < to) {
        std::rotate(at(from), at(from + 1), at(to + 1));
    } else {
        std::rotate(at(to), at(from), at(from + 1));
    }
}

}  // namespace marvolen
