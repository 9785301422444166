#include <zorvan/hosts/gtkmodels/GdkTexture.h>

#include <gdk/gdk.h>

namespace zorvan {

GdkTexture* toGdkTexture(const CGImage::Pointer& image) {
    if (!image)
        return nullptr;
    const auto release = [](gpointer held) { delete static_cast<CGImage::Pointer*>(held); };
    GBytes* bytes = g_bytes_new_with_free_func(image->uint8Data(),
                                               static_cast<gsize>(image->bitmap().byteCount()),
                                               release, new CGImage::Pointer(image));
    const GdkMemoryFormat format = image->bitmap().layout() == BitmapLayout::rgba
                                       ? GDK_MEMORY_R8G8B8A8_PREMULTIPLIED
                                       : GDK_MEMORY_A8R8G8B8_PREMULTIPLIED;
    GdkTexture* texture =
        gdk_memory_texture_new(static_cast<int>(image->width()), static_cast<int>(image->height()),
                               format, bytes, static_cast<gsize>(image->bytesPerRow()));
    g_bytes_unref(bytes);
    return texture;
}

} // namespace zorvan
