// How like two grey pictures are: likeness REFERENCE.pgm PICTURE.pgm prints PSNR in dB and SSIM,
// the mean over blocks of 8 x 8 pixels.
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <vector>

namespace {

struct Grey {
    std::size_t width = 0, height = 0;
    std::vector<std::uint8_t> pixels;
};

// Binary, of 8 bits, as other tools write it: "P5 WIDTH HEIGHT 255" and one blank.
Grey Read(const wchar_t* path) {
    Grey grey;
    FILE* file = _wfopen(path, L"rb");
    unsigned width = 0, height = 0, most = 0;
    if (!file) return grey;
    if (fscanf(file, "P5 %u %u %u", &width, &height, &most) == 3 && most == 255 &&
        fgetc(file) != EOF) {
        grey = {width, height, std::vector<std::uint8_t>(static_cast<std::size_t>(width) * height)};
        if (fread(grey.pixels.data(), 1, grey.pixels.size(), file) != grey.pixels.size()) grey = {};
    }
    fclose(file);
    return grey;
}

double Psnr(const Grey& a, const Grey& b) {
    double sum = 0;
    for (std::size_t i = 0; i < a.pixels.size(); ++i) {
        const double difference = a.pixels[i] - b.pixels[i];
        sum += difference * difference;
    }
    return 10 *
           std::log10(255.0 * 255.0 * static_cast<double>(a.pixels.size()) / std::fmax(sum, 1e-9));
}

double BlockSsim(const Grey& a, const Grey& b, std::size_t left, std::size_t top) {
    double sums[5] = {};
    for (std::size_t y = top; y < top + 8; ++y) {
        for (std::size_t x = left; x < left + 8; ++x) {
            const double p = a.pixels[y * a.width + x], q = b.pixels[y * a.width + x];
            const double values[5] = {p, q, p * p, q * q, p * q};
            for (int i = 0; i < 5; ++i) sums[i] += values[i] / 64;
        }
    }
    const double one = 6.5025, two = 58.5225; // (0.01 * 255)^2 and (0.03 * 255)^2
    const double product = sums[0] * sums[1], squares = sums[0] * sums[0] + sums[1] * sums[1];
    return (2 * product + one) * (2 * (sums[4] - product) + two) /
           ((squares + one) * (sums[2] + sums[3] - squares + two));
}

double Ssim(const Grey& a, const Grey& b) {
    double sum = 0, count = 0;
    for (std::size_t y = 0; y + 8 <= a.height; y += 8)
        for (std::size_t x = 0; x + 8 <= a.width; x += 8, ++count) sum += BlockSsim(a, b, x, y);
    return sum / std::fmax(count, 1);
}

} // namespace

int wmain(int count, wchar_t** words) {
    if (count != 3) return 2;
    const Grey reference = Read(words[1]), picture = Read(words[2]);
    if (reference.pixels.empty() || reference.width != picture.width ||
        reference.height != picture.height)
        return 1;
    printf("psnr\t%.3f\nssim\t%.5f\n", Psnr(reference, picture), Ssim(reference, picture));
    return 0;
}
