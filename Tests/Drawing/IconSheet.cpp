// Draws the icons of the bar in all their states and sizes, enlarged, on light and on dark, for whoever works on them.
#include "Kestrio/Drawing/TrayIcons.h"

#include <CLI/CLI.hpp>
#include <cstdint>
#include <fstream>
#include <iostream>
#include <vector>

namespace kestrio {
namespace {

constexpr std::uint32_t lightBar = 0xf2f2f2;
constexpr std::uint32_t darkBar = 0x202124;

class Sheet {
public:
    Sheet(int width, int height)
        : width_(width), pixels_(static_cast<std::size_t>(width) * static_cast<std::size_t>(height), darkBar) {}

    void band(int top, int height, std::uint32_t colour) {
        for (int y = top; y < top + height; ++y)
            for (int x = 0; x < width_; ++x)
                at(x, y) = colour;
    }
    void put(const TrayPixmap& pixmap, int left, int top, int zoom) {
        for (int y = 0; y < pixmap.side * zoom; ++y)
            for (int x = 0; x < pixmap.side * zoom; ++x)
                blend(at(left + x, top + y),
                      pixmap.pixels[static_cast<std::size_t>(y / zoom * pixmap.side + x / zoom)]);
    }
    void write(const std::string& file) const {
        std::ofstream out(file, std::ios::binary);
        out << "P6\n" << width_ << " " << pixels_.size() / static_cast<std::size_t>(width_) << "\n255\n";
        for (const auto pixel : pixels_)
            for (const int shift : {16, 8, 0})
                out.put(static_cast<char>(pixel >> shift & 0xff));
    }

private:
    std::uint32_t& at(int x, int y) {
        return pixels_[static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) + static_cast<std::size_t>(x)];
    }
    static void blend(std::uint32_t& below, std::uint32_t above) {
        const auto alpha = above >> 24;
        std::uint32_t result = 0;
        for (const int shift : {16, 8, 0}) {
            const auto mixed = ((above >> shift & 0xff) * alpha + (below >> shift & 0xff) * (255 - alpha)) / 255;
            result |= mixed << shift;
        }
        below = result;
    }

    int width_;
    std::vector<std::uint32_t> pixels_;
};

std::vector<std::vector<TrayPixmap>> allIcons() {
    std::vector<std::vector<TrayPixmap>> icons;
    const auto status = [&](TrackingState state, double minutes, bool time, bool light) {
        icons.push_back(trayIcon(menuBarLabel(state, Seconds(60 * minutes), {time, light})));
    };
    status(TrackingState::tracking, 192, true, true);
    status(TrackingState::idle, 7, true, true);
    status(TrackingState::paused, 605, true, true);
    status(TrackingState::tracking, 768, true, false);
    status(TrackingState::tracking, 529, true, true);
    status(TrackingState::tracking, 0, false, true);
    status(TrackingState::away, 0, false, true);
    status(TrackingState::paused, 0, false, true);
    status(TrackingState::tracking, 0, false, false);
    const auto system = [&](SystemMenuParts parts, double cpu, bool warns) {
        const std::vector<SystemInsight> insights{
            {"cpu", warns ? SystemInsight::Level::warning : SystemInsight::Level::good, "cpu", ""}};
        icons.push_back(trayIcon(systemMenuLabel(parts, cpu, insights)));
    };
    system({true, true}, 0.42, false);
    system({true, true}, 0.05, true);
    system({true, true}, 1, false);
    system({true, false}, 0.42, false);
    system({true, false}, 0.42, true);
    system({false, true}, 0.68, false);
    system({false, true}, 1, false);
    return icons;
}

} // namespace
} // namespace kestrio

int main(int argc, char** argv) {
    using namespace kestrio;
    CLI::App app("Draws the icons of the bar in all their states and sizes, enlarged.", "IconSheet");
    std::string file;
    app.add_option("file", file, "The picture, a .ppm")->required();
    CLI11_PARSE(app, argc, argv);
    constexpr int zoom = 4;
    constexpr int cell = 22 * zoom + 16;
    const auto icons = allIcons();
    const int width = static_cast<int>(icons.size()) * cell + 16;
    Sheet sheet(width, 2 * 430);
    for (const int top : {0, 430}) {
        sheet.band(top, 430, top == 0 ? lightBar : darkBar);
        int left = 16;
        for (const auto& icon : icons) {
            sheet.put(icon[1], left, top + 10, 1); // 22, as it is
            sheet.put(icon[2], left + 30, top + 10, 1);
            sheet.put(icon[3], left + 60, top + 8, 1);
            sheet.put(icon[1], left, top + 50, zoom);
            sheet.put(icon[2], left, top + 150, zoom - 1);
            sheet.put(icon[3], left, top + 236, 2);
            sheet.put(icon[5], left, top + 320, 1);
            sheet.put(icon[0], left + 70, top + 320, 1); // 16, as it is, and enlarged
            sheet.put(icon[0], left + 68, top + 344, 2);
            left += cell;
        }
    }
    sheet.write(file);
}
