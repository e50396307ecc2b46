#include "catalog/logos/LogoDecoding.h"
#include "doubles/LogoPictures.h"

#include <QGuiApplication>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <ctime>

using namespace tickwise;
using namespace tickwise::test;

namespace {

constexpr double emergencyStop = 250; // milliseconds
double longestOfAll = 0;

double threadMilliseconds()
{
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return double(time.tv_sec) * 1e3 + double(time.tv_nsec) / 1e6;
}

/// Decodes the picture over and over. Reports the longest decoding and whether the picture was taken.
void decode(benchmark::State &state, const QByteArray &bytes)
{
    double longest = 0;
    bool taken = false;
    for ([[maybe_unused]] auto _ : state) {
        const double start = threadMilliseconds();
        taken = decodeLogo(bytes).has_value();
        longest = std::max(longest, threadMilliseconds() - start);
    }
    state.counters["taken"] = taken ? 1 : 0;
    state.counters["longest_ms"] = longest;
    state.counters["bytes"] = double(bytes.size());
    longestOfAll = std::max(longestOfAll, longest);
}

/// The best quality that keeps the picture within what a logo may have.
QByteArray fitting(const QImage &image, const char *format, int most)
{
    for (int quality = most; quality > 0; quality -= 5) {
        QByteArray bytes = encoded(image, format, quality);
        if (bytes.size() <= 524288)
            return bytes;
    }
    return encoded(image, format, 0);
}

QByteArray noisyProgressive(int side)
{
    for (int quality = 60; quality > 0; quality -= 5) {
        QByteArray bytes = progressiveJpeg(noiseImage(side), quality);
        if (bytes.size() <= 524288)
            return bytes;
    }
    return progressiveJpeg(noiseImage(side), 0);
}

void add(const char *name, const QByteArray &bytes)
{
    benchmark::RegisterBenchmark(name, [bytes](benchmark::State &state) {
        decode(state, bytes);
    })->Unit(benchmark::kMillisecond);
}

void addAll()
{
    add("png 250 logo", encoded(logoLikeImage(250), "png"));
    add("jpeg 250 logo", encoded(logoLikeImage(250), "jpeg"));
    add("webp 250 logo", encoded(logoLikeImage(250), "webp"));
    add("png 1024 logo", encoded(logoLikeImage(1024), "png"));
    add("png 2048 logo", encoded(logoLikeImage(2048), "png"));
    add("png 340 noise", encoded(noiseImage(340), "png"));
    for (char filter = 0; filter < 5; ++filter) {
        add(qPrintable(QStringLiteral("png 1023 rgba filter %1").arg(int(filter))), blankPng({1023, 1023}, filter));
        add(qPrintable(QStringLiteral("png 2048 gray filter %1").arg(int(filter))),
            blankPng({2048, 2047, 8, 0}, filter));
    }
    add("png 723 rgba 16 bit", blankPng({723, 723, 16, 6}, 4));
    add("png 1180 rgb", blankPng({1180, 1180, 8, 2}, 4));
    add("png 2048 1 bit", blankPng({2048, 2048, 1, 0}, 4));
    add("png 2048 interlaced 1 bit", blankPng({2048, 2048, 1, 0, 1}, 4));
    for (quint32 side : {300U, 650U})
        add(qPrintable(QStringLiteral("png %1 interlaced rgba").arg(side)), blankPng({side, side, 8, 6, 1}, 4));
    add("png 1300 interlaced gray", blankPng({1300, 1300, 8, 0, 1}, 4));
    for (int side : {512, 1024, 2048}) {
        add(qPrintable(QStringLiteral("jpeg %1 logo").arg(side)), encoded(logoLikeImage(side), "jpeg"));
        add(qPrintable(QStringLiteral("jpeg %1 noise").arg(side)), fitting(noiseImage(side), "jpeg", 95));
        add(qPrintable(QStringLiteral("jpeg %1 progressive logo").arg(side)), progressiveJpeg(logoLikeImage(side), 75));
        add(qPrintable(QStringLiteral("jpeg %1 progressive noise").arg(side)), noisyProgressive(side));
        add(qPrintable(QStringLiteral("webp %1 logo").arg(side)), encoded(logoLikeImage(side), "webp", 75));
        add(qPrintable(QStringLiteral("webp %1 noise").arg(side)), fitting(noiseImage(side), "webp", 95));
        add(qPrintable(QStringLiteral("webp %1 lossless").arg(side)), encoded(logoLikeImage(side), "webp", 100));
        add(qPrintable(QStringLiteral("gif %1 flat").arg(side)),
            gifOfData(side, side, flatGifData(qint64(side) * side)));
        add(qPrintable(QStringLiteral("bmp %1 runs").arg(side)), runLengthBmp(side, side));
    }
    add("webp 340 lossless noise", encoded(noiseImage(340), "webp", 100));
    add("bmp 360 noise", encoded(noiseImage(360), "bmp"));
    add("ico 256", icon({{0, iconBitmap(256, 0xff336699)}}));
}

} // namespace

int main(int argc, char **argv)
{
    const QGuiApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    addAll();
    benchmark::RunSpecifiedBenchmarks();
    std::printf("Longest decoding: %.1f ms of %.0f ms\n", longestOfAll, emergencyStop);
    return 0;
}
