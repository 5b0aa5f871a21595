#include "tests/jpeg/test_encoder.h"

#include <cstdio>
#include <cstdlib>
#include <jpeglib.h>
#include <utility>

namespace marvolen::test {
namespace {

// A libjpeg decompressor over a byte vector.
class Decompressor {
public:
    explicit Decompressor(const Bytes& jpeg) {
        info.err = jpeg_std_error(&errors);
        jpeg_create_decompress(&info);
        jpeg_mem_src(&info, jpeg.data(), static_cast<unsigned long>(jpeg.size()));
        jpeg_read_header(&info, TRUE);
    }
    ~Decompressor() { jpeg_destroy_decompress(&info); }
    Decompressor(const Decompressor&) = delete;
    Decompressor& operator=(const Decompressor&) = delete;

    jpeg_decompress_struct info{};

private:
    jpeg_error_mgr errors{};
};

std::vector<jpeg_scan_info> ToScanScript(const std::vector<ProgressiveScan>& scans) {
    std::vector<jpeg_scan_info> script;
    for (const ProgressiveScan& scan : scans) {
        jpeg_scan_info info{};
        info.comps_in_scan = static_cast<int>(scan.components.size());
        for (std::size_t i = 0; i < scan.components.size(); ++i) {
            info.component_index[i] = scan.components[i];
        }
        info.Ss = scan.spectralStart;
        info.Se = scan.spectralEnd;
        info.Ah = scan.approximationHigh;
        info.Al = scan.approximationLow;
        script.push_back(info);
    }
    return script;
}

}  // namespace

Bytes EncodeJpeg(const Picture& picture, const EncodeOptions& options) {
    jpeg_error_mgr errors{};
    jpeg_compress_struct info{};
    info.err = jpeg_std_error(&errors);
    errors.emit_message = [](j_common_ptr, int) {};  // 16-bit tables are meant
    jpeg_create_compress(&info);
    unsigned char* memory = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&info, &memory, &size);
    info.image_width = static_cast<JDIMENSION>(picture.width);
    info.image_height = static_cast<JDIMENSION>(picture.height);
    info.input_components = 3;
    info.in_color_space = JCS_RGB;
    jpeg_set_defaults(&info);
    if (options.gray) jpeg_set_colorspace(&info, JCS_GRAYSCALE);
    jpeg_set_linear_quality(&info, options.quantPercent, FALSE);
    info.comp_info[0].h_samp_factor = options.horizontal;
    info.comp_info[0].v_samp_factor = options.vertical;
    info.optimize_coding = options.optimise ? TRUE : FALSE;
    info.restart_interval = static_cast<unsigned>(options.restartInterval);
    const std::vector<jpeg_scan_info> script = ToScanScript(options.scans);
    if (!script.empty()) {
        info.scan_info = script.data();
        info.num_scans = static_cast<int>(script.size());
    } else if (options.progressive) {
        jpeg_simple_progression(&info);
    }
    jpeg_start_compress(&info, TRUE);
    const std::size_t stride = static_cast<std::size_t>(picture.width) * 3;
    while (info.next_scanline < info.image_height) {
        JSAMPROW row = const_cast<JSAMPROW>(picture.rgb.data() + info.next_scanline * stride);
        jpeg_write_scanlines(&info, &row, 1);
    }
    jpeg_finish_compress(&info);
    jpeg_destroy_compress(&info);
    Bytes jpeg(memory, memory + size);
    std::free(memory);
    return jpeg;
}

std::vector<ReferenceComponent> ReadCoefficients(const Bytes& jpeg) {
    Decompressor decompressor(jpeg);
    jpeg_decompress_struct& info = decompressor.info;
    jvirt_barray_ptr* arrays = jpeg_read_coefficients(&info);
    std::vector<ReferenceComponent> components;
    for (int i = 0; i < info.num_components; ++i) {
        const jpeg_component_info& from = info.comp_info[i];
        const bool alone = info.num_components == 1;
        const auto roundUp = [](unsigned value, int unit) {
            const auto u = static_cast<unsigned>(unit);
            return static_cast<int>((value + u - 1) / u * u);
        };
        ReferenceComponent component;
        component.horizontal = alone ? 1 : from.h_samp_factor;
        component.vertical = alone ? 1 : from.v_samp_factor;
        component.blocksPerRow = roundUp(from.width_in_blocks, component.horizontal);
        component.blockRows = roundUp(from.height_in_blocks, component.vertical);
        for (std::size_t k = 0; k < 64; ++k) {
            component.quantisation[k] = from.quant_table->quantval[k];
        }
        for (int row = 0; row < component.blockRows; ++row) {
            JBLOCKARRAY blocks =
                info.mem->access_virt_barray(reinterpret_cast<j_common_ptr>(&info), arrays[i],
                                             static_cast<JDIMENSION>(row), 1, FALSE);
            for (int column = 0; column < component.blocksPerRow; ++column) {
                const JCOEF* block = blocks[0][column];
                component.coefficients.insert(component.coefficients.end(), block, block + 64);
            }
        }
        components.push_back(std::move(component));
    }
    jpeg_finish_decompress(&info);
    return components;
}

Picture DecodeWithLibjpeg(const Bytes& jpeg, JpegPath path) {
    Decompressor decompressor(jpeg);
    jpeg_decompress_struct& info = decompressor.info;
    info.dct_method = path == JpegPath::Fast ? JDCT_IFAST : JDCT_ISLOW;
    info.do_fancy_upsampling = FALSE;
    info.do_block_smoothing = FALSE;
    info.out_color_space = JCS_RGB;
    jpeg_start_decompress(&info);
    Picture picture{static_cast<int>(info.output_width), static_cast<int>(info.output_height), {}};
    const std::size_t stride = static_cast<std::size_t>(picture.width) * 3;
    picture.rgb.resize(stride * static_cast<std::size_t>(picture.height));
    while (info.output_scanline < info.output_height) {
        JSAMPROW row = picture.rgb.data() + info.output_scanline * stride;
        jpeg_read_scanlines(&info, &row, 1);
    }
    jpeg_finish_decompress(&info);
    return picture;
}

}  // namespace marvolen::test
