// Stands in for the TIFF library's list of codecs where the library is linked statically: with its
// own list it brings every library that it can compress with into the program, one of them under
// the GPL, though rasters are only ever deflated.
#include <tiffio.h>

#include <cstdint>

// The library's own names.
extern "C" {
int TIFFInitZIP(TIFF* tiff, int scheme);
extern const TIFFCodec _TIFFBuiltinCODECS[];
int TIFFJPEGIsFullStripRequired(TIFF* tiff);
}

const TIFFCodec _TIFFBuiltinCODECS[] = {
    {const_cast<char*>("AdobeDeflate"), COMPRESSION_ADOBE_DEFLATE, TIFFInitZIP},
    {nullptr, 0, nullptr}};

int TIFFIsCODECConfigured(std::uint16_t scheme) {
  return scheme == COMPRESSION_ADOBE_DEFLATE ? 1 : 0;
}

int TIFFJPEGIsFullStripRequired(TIFF*) {
  return 0;
}
