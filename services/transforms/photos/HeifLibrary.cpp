#include "services/transforms/photos/HeifLibrary.h"

namespace transforms {
namespace {

template <class Function>
bool Bind(HMODULE module, const char* name, Function& function) noexcept {
    function = reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(module, name)));
    return function != nullptr;
}

bool BindAll(HMODULE module, HeifFunctions& to) noexcept {
#define OB_BIND(name) Bind(module, #name, to.name)
    return OB_BIND(heif_context_alloc) && OB_BIND(heif_context_free) &&
           OB_BIND(heif_context_set_max_decoding_threads) &&
           OB_BIND(heif_context_read_from_memory_without_copy) &&
           OB_BIND(heif_context_get_primary_image_handle) && OB_BIND(heif_image_handle_release) &&
           OB_BIND(heif_image_handle_get_width) && OB_BIND(heif_image_handle_get_height) &&
           OB_BIND(heif_image_handle_has_alpha_channel) &&
           OB_BIND(heif_image_handle_is_premultiplied_alpha) &&
           OB_BIND(heif_image_handle_get_luma_bits_per_pixel) &&
           OB_BIND(heif_image_handle_get_raw_color_profile_size) &&
           OB_BIND(heif_image_handle_get_raw_color_profile) &&
           OB_BIND(heif_image_handle_get_nclx_color_profile) &&
           OB_BIND(heif_nclx_color_profile_free) &&
           OB_BIND(heif_image_handle_get_list_of_metadata_block_IDs) &&
           OB_BIND(heif_image_handle_get_metadata_size) &&
           OB_BIND(heif_image_handle_get_metadata) && OB_BIND(heif_decoding_options_alloc) &&
           OB_BIND(heif_decoding_options_free) && OB_BIND(heif_decode_image) &&
           OB_BIND(heif_image_get_primary_width) && OB_BIND(heif_image_get_primary_height) &&
           OB_BIND(heif_image_get_plane_readonly) && OB_BIND(heif_image_release);
#undef OB_BIND
}

bool IsFullPath(const std::wstring& path) noexcept {
    return path.size() > 3 && (path.substr(1, 2) == L":\\" || path.substr(0, 2) == L"\\\\");
}

} // namespace

std::optional<HeifLibrary> HeifLibrary::Load(const std::wstring& path) {
    if (!IsFullPath(path)) return {};
    HeifLibrary library;
    library.module_.Reset(LoadLibraryExW(
        path.c_str(), nullptr, LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR | LOAD_LIBRARY_SEARCH_SYSTEM32));
    if (!library.module_ || !BindAll(library.module_.Get(), library.functions_)) return {};
    return library;
}

} // namespace transforms
