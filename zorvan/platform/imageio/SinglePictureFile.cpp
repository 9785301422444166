#include <zorvan/platform/imageio/internal/SinglePictureFile.h>

#include <zorvan/platform/imageio/internal/BoxWriter.h>

#include <utility>

namespace zorvan::imageio {
namespace {

void writeItemTypes(BoxWriter& out, const std::vector<CodedPicture>& pictures) {
    out.fullBox("iinf", 0, [&] {
        out.number(pictures.size(), 2);
        for (std::size_t i = 0; i < pictures.size(); ++i)
            out.fullBox("infe", 2, [&] {
                out.number(i + 1, 2);
                out.number(0, 2);
                out.text(pictures[i].type);
                out.number(0, 1); // no name
            });
    });
}

void writeProperties(BoxWriter& out, const std::vector<CodedPicture>& pictures) {
    out.box("iprp", [&] {
        out.box("ipco", [&] {
            for (const CodedPicture& picture : pictures) {
                out.fullBox("ispe", 0, [&] {
                    out.number(static_cast<std::uint64_t>(picture.size.width), 4);
                    out.number(static_cast<std::uint64_t>(picture.size.height), 4);
                });
                for (const HeifBox& property : picture.properties)
                    out.box(property.type, [&] { out.write(property.content); });
                if (!picture.colours.empty())
                    out.box("colr", [&] { out.write(picture.colours); });
            }
        });
        out.fullBox("ipma", 0, [&] {
            out.number(pictures.size(), 4);
            std::size_t next = 1;
            for (std::size_t i = 0; i < pictures.size(); ++i) {
                const CodedPicture& picture = pictures[i];
                const std::size_t count =
                    picture.properties.size() + (picture.colours.empty() ? 1 : 2);
                out.number(i + 1, 2);
                out.number(count, 1);
                for (std::size_t end = next + count; next < end; ++next)
                    out.number(next, 1);
            }
        });
    });
}

void writeLocations(BoxWriter& out, const std::vector<CodedPicture>& pictures, std::uint64_t data) {
    out.fullBox("iloc", 0, [&] {
        out.number(0x4400, 2); // 4 bytes for a place, 4 for a length
        out.number(pictures.size(), 2);
        for (std::size_t i = 0; i < pictures.size(); ++i) {
            out.number(i + 1, 2);
            out.number(0, 2); // in this file
            out.number(1, 2); // in one piece
            out.number(data, 4);
            out.number(pictures[i].data.size(), 4);
            data += pictures[i].data.size();
        }
    });
}

void writeReference(BoxWriter& out, std::string_view type, int from, int to) {
    out.box(type, [&] {
        out.number(static_cast<std::uint64_t>(from), 2);
        out.number(1, 2);
        out.number(static_cast<std::uint64_t>(to), 2);
    });
}

/// The boxes before the data, which begins at that place.
Data headOf(const std::vector<CodedPicture>& pictures, bool isPremultiplied, std::uint64_t data) {
    BoxWriter out;
    out.box("ftyp", [&] {
        out.text("mif1");
        out.number(0, 4);
        out.text("mif1heicavif");
    });
    out.fullBox("meta", 0, [&] {
        out.fullBox("hdlr", 0, [&] {
            out.number(0, 4);
            out.text("pict");
            out.number(0, 8);
            out.number(0, 4);
            out.number(0, 1); // no name
        });
        out.fullBox("pitm", 0, [&] { out.number(1, 2); });
        writeLocations(out, pictures, data);
        writeItemTypes(out, pictures);
        if (pictures.size() > 1)
            out.fullBox("iref", 0, [&] {
                writeReference(out, "auxl", 2, 1);
                if (isPremultiplied)
                    writeReference(out, "prem", 1, 2);
            });
        writeProperties(out, pictures);
    });
    return std::move(out).bytes();
}

} // namespace

Data singlePictureFile(const std::vector<CodedPicture>& pictures, bool isPremultiplied) {
    constexpr std::size_t boxHead = 8;
    const std::size_t head = headOf(pictures, isPremultiplied, 0).size();
    BoxWriter out;
    out.write(headOf(pictures, isPremultiplied, head + boxHead));
    out.box("mdat", [&] {
        for (const CodedPicture& picture : pictures)
            out.write(picture.data);
    });
    return std::move(out).bytes();
}

} // namespace zorvan::imageio
