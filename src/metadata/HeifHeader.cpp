#include "metadata/HeifHeader.h"

#include <libheif/heif.h>

#include <QFile>
#include <memory>
#include <vector>

#include "services/Log.h"

namespace {

QByteArray xmpOf(heif_image_handle* handle) {
    const int count = heif_image_handle_get_number_of_metadata_blocks(handle, "mime");
    std::vector<heif_item_id> ids(size_t(std::max(count, 0)));
    heif_image_handle_get_list_of_metadata_block_IDs(handle, "mime", ids.data(), count);
    for (const heif_item_id id : ids) {
        const char* type = heif_image_handle_get_metadata_content_type(handle, id);
        if (!type || QByteArray(type) != "application/rdf+xml") continue;
        QByteArray packet(qsizetype(heif_image_handle_get_metadata_size(handle, id)), '\0');
        if (heif_image_handle_get_metadata(handle, id, packet.data()).code == heif_error_Ok)
            return packet;
    }
    return {};
}

}  // namespace

HeifHeader HeifHeader::of(const QString& path) {
    HeifHeader header;
    const std::unique_ptr<heif_context, decltype(&heif_context_free)> context(heif_context_alloc(),
                                                                              &heif_context_free);
    if (!context ||
        heif_context_read_from_file(context.get(), QFile::encodeName(path).constData(), nullptr)
                .code != heif_error_Ok)
        return header;
    heif_image_handle* raw = nullptr;
    if (heif_context_get_primary_image_handle(context.get(), &raw).code != heif_error_Ok)
        return header;
    const std::unique_ptr<heif_image_handle, decltype(&heif_image_handle_release)> handle(
        raw, &heif_image_handle_release);
    header.read = true;
    const heif_color_profile_type profile = heif_image_handle_get_color_profile_type(raw);
    header.hasIccProfile =
        profile == heif_color_profile_type_prof || profile == heif_color_profile_type_rICC;
    heif_color_profile_nclx* nclx = nullptr;
    if (heif_image_handle_get_nclx_color_profile(raw, &nclx).code == heif_error_Ok && nclx) {
        header.colourPrimaries = int(nclx->color_primaries);
        header.transferCharacteristics = int(nclx->transfer_characteristics);
        heif_nclx_color_profile_free(nclx);
    }
    header.xmp = xmpOf(raw);
    return header;
}
