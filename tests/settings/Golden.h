#pragma once

#include "Examples.h"

#include <zorvan/media/AVFileType.h>
#include <zorvan/media/AVVideoCodecType.h>
#include <zorvan/platform/bookmarks/internal/BookmarkRecord.h>
#include <zorvan/settings/BundleVersionUDC.h>
#include <zorvan/settings/EnumCoders.h>
#include <zorvan/settings/GeometryCoders.h>
#include <zorvan/settings/ImageExportFormatUDC.h>
#include <zorvan/settings/JSONCodableUDC.h>
#include <zorvan/settings/MediaIdentifierCoders.h>
#include <zorvan/settings/NumberCoders.h>
#include <zorvan/settings/ObjectCoders.h>
#include <zorvan/settings/PersistentURLUDC.h>
#include <zorvan/settings/TimeCoders.h>
#include <zorvan/settings/URLCoders.h>

#include <functional>
#include <map>
#include <string>

namespace zorvan {

/// What the golden databases hold, the coders that were there when each was made. A database is
/// never made again: what is added to a later version goes into another one.
///
/// Goes through a value of each coder: functions for each name that write it, write that there is
/// none, and check it.
class Golden {
public:
    static constexpr int count = 2;

    explicit Golden(int number) { number == 1 ? addFirst() : addSecond(); }

    std::map<std::string, std::function<void(NSUserDefaults&)>> writers, erasers;
    std::map<std::string, std::function<bool(NSUserDefaults&)>> checks;

private:
    void addFirst() {
        add<BoolUDC>("Bool", true);
        add<IntUDC>("Int", -1234567890123456789);
        add<UIntUDC>("UInt", std::uint64_t{18446744073709551615u});
        add<FloatUDC>("Float", 0.1f);
        add<DoubleUDC>("Double", 0.1);
        add<CGFloatUDC>("CGFloat", -2.5);
        add<CGPointUDC>("CGPoint", CGPoint(1, -2));
        add<CGSizeUDC>("CGSize", CGSize(3, 4));
        add<CGRectUDC>("CGRect", CGRect(10, 20, 30, 40));
        add<DateUDC>("Date", Date(Date::duration(1'700'000'000'123'456'789)));
        add<DataUDC>("Data", Data{std::byte{0}, std::byte{255}});
        add<StringUDC>("String", std::string("Zo\u00eb \U0001F600"));
        add<StringArrayUDC>("StringArray", {"a", ""});
        add<DictUDC>("Dict", {{"nested", PropertyList::Array{1, 2.0, true, "x"}}});
        add<NSArrayUDC>("NSArray", {PropertyList::Dictionary{{"k", Date()}}});
        add<NSNumberUDC>("NSNumber", NSNumber(false));
        add<NSObjectUDC>("NSObject", PropertyList(Data(300, std::byte{7})));
        add<URLUDC>("URL", *URL::make({.string = "https://example.com/?q#f"}));
        add<URLArrayUDC>("URLArray", {URL({.fileURLWithPath = "/a b"}), URL::root()});
        add<JSONCodableUDC<Window>>("JSONCodable",
                                    Window{"w", 0.5, 7, {Letter::a}, {{"m", false}}});
        add<BundleVersionUDC>("BundleVersion", BundleVersion(2, 10, 0));
        add<CMTimeUDC>("CMTime", CMTime({.seconds = 1.5}));
        add<CMTimeRangeUDC>("CMTimeRange",
                            CMTimeRange({.start = CMTimeMake(1, 3), .duration = CMTimeMake(5, 7)}));
        add<DateFormatterStyleUDC>("DateFormatterStyle", NSDateFormatterStyle::medium);
        add<ImageExportFormatUDC>("ImageExportFormat", ImageExportFormat::heic);
        add<EnumStringUDC<Letter>>("EnumString", Letter::b);
        add<EnumIntUDC<Level>>("EnumInt", Level{6});
        add<EnumStringArrayUDC<Letter>>("EnumStringArray", {Letter::b, Letter::a});
    }

    void addSecond() {
        add<AVFileTypeUDC>("AVFileType", AVFileType({.rawValue = "com.example.odd-movie"}));
        add<AVVideoCodecTypeUDC>("AVVideoCodecType", AVVideoCodecType({.rawValue = "hvc1"}));
        // Where the file is on another computer, nobody knows: the bookmark has to be whole.
        add<PersistentURLUDC>("PersistentURL", URL({.fileURLWithPath = "/usr/bin/env"}));
        checks["PersistentURL"] = [](NSUserDefaults& store) {
            const Data bytes = store.dataForKey("PersistentURL").value_or(Data());
            const auto record = internal::BookmarkRecord::decoded(bytes);
            return record && record->path == "/usr/bin/env" && record->identity.inode != 0 &&
                   !record->handle.bytes.empty() && record->encoded() == bytes;
        };
    }

    template <class Coder>
    void add(const std::string& name, const typename Coder::CodableType& value) {
        writers[name] = [=](NSUserDefaults& store) { Coder().encode(value, store, name); };
        erasers[name] = [=](NSUserDefaults& store) { Coder().encode(std::nullopt, store, name); };
        checks[name] = [=](NSUserDefaults& store) { return Coder().decode(store, name) == value; };
    }
};

} // namespace zorvan
