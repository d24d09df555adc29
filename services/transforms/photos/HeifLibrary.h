// The library for HEIC photos: a DLL of its own, which anybody can replace and which may be
// missing. What is used of its interface is declared here.
#pragma once

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "ObLib/Src/Win32/UniqueHandle.h"

namespace transforms {

inline constexpr wchar_t kHeifLibraryFileName[] = L"libheif.dll";

struct heif_context;
struct heif_image_handle;
struct heif_image;

// Records of the library, as release 1.15 and later lay them out.
struct HeifError {
    int code; // 0 is success
    int subcode;
    const char* message;
};
inline constexpr int kHeifUnsupportedFile = 3, kHeifUnsupportedFeature = 4, kHeifNoMemory = 6;
inline constexpr int kHeifLimitExceeded = 1000; // a subcode

struct HeifColourNumbers {
    std::uint8_t version;
    std::int32_t primaries, transfer, matrix;
    std::uint8_t isFullRange;
};
static_assert(offsetof(HeifColourNumbers, primaries) == 4);

struct HeifDecodingOptions {
    std::uint8_t version;
    std::uint8_t ignoresTransformations;
    void (*startProgress)(int step, int most, void* user);
    void (*onProgress)(int step, int progress, void* user);
    void (*endProgress)(int step, void* user);
    void* user;
    std::uint8_t convertsTo8Bits;
    std::uint8_t isStrict;
};
static_assert(offsetof(HeifDecodingOptions, user) == 32);
static_assert(offsetof(HeifDecodingOptions, isStrict) == 41);
inline constexpr std::uint8_t kHeifOptionsVersion = 3; // the first with isStrict

inline constexpr int kHeifRgb = 1;                                        // a colour space
inline constexpr int kHeifInterleavedRgb = 10, kHeifInterleavedRgba = 11; // ways to store it
inline constexpr int kHeifInterleaved = 10;                               // a channel

// The functions, each under the library's name for it. Used by one thread at a time.
struct HeifFunctions {
    heif_context* (*heif_context_alloc)();
    void (*heif_context_free)(heif_context*);
    void (*heif_context_set_max_decoding_threads)(heif_context*, int);
    HeifError (*heif_context_read_from_memory_without_copy)(heif_context*, const void*, std::size_t,
                                                            const void* options);
    HeifError (*heif_context_get_primary_image_handle)(heif_context*, heif_image_handle**);
    void (*heif_image_handle_release)(const heif_image_handle*);
    int (*heif_image_handle_get_width)(const heif_image_handle*);
    int (*heif_image_handle_get_height)(const heif_image_handle*);
    int (*heif_image_handle_has_alpha_channel)(const heif_image_handle*);
    int (*heif_image_handle_is_premultiplied_alpha)(const heif_image_handle*);
    int (*heif_image_handle_get_luma_bits_per_pixel)(const heif_image_handle*);
    std::size_t (*heif_image_handle_get_raw_color_profile_size)(const heif_image_handle*);
    HeifError (*heif_image_handle_get_raw_color_profile)(const heif_image_handle*, void*);
    HeifError (*heif_image_handle_get_nclx_color_profile)(const heif_image_handle*,
                                                          HeifColourNumbers**);
    void (*heif_nclx_color_profile_free)(HeifColourNumbers*);
    int (*heif_image_handle_get_list_of_metadata_block_IDs)(const heif_image_handle*, const char*,
                                                            std::uint32_t*, int);
    std::size_t (*heif_image_handle_get_metadata_size)(const heif_image_handle*, std::uint32_t);
    HeifError (*heif_image_handle_get_metadata)(const heif_image_handle*, std::uint32_t, void*);
    HeifDecodingOptions* (*heif_decoding_options_alloc)();
    void (*heif_decoding_options_free)(HeifDecodingOptions*);
    HeifError (*heif_decode_image)(const heif_image_handle*, heif_image**, int colours, int chroma,
                                   const HeifDecodingOptions*);
    int (*heif_image_get_primary_width)(const heif_image*);
    int (*heif_image_get_primary_height)(const heif_image*);
    const std::uint8_t* (*heif_image_get_plane_readonly)(const heif_image*, int channel,
                                                         int* stride);
    void (*heif_image_release)(const heif_image*);
};

// The loaded DLL.
class HeifLibrary {
public:
    // `path` is the file's full path. It may bring DLLs of its own from the same folder; nothing is
    // taken from the current folder or the search path. Nothing when the file is missing, is no
    // such library or lacks a function.
    static std::optional<HeifLibrary> Load(const std::wstring& path);

    const HeifFunctions* operator->() const noexcept { return &functions_; }

private:
    ObLib::UniqueModule module_;
    HeifFunctions functions_{};
};

} // namespace transforms
