#include "Kestrio/Platform/Linux/FileManager.h"
#include "Tests/Platform/Linux/ServedBus.h"
#include "Tests/Support/PrivateBus.h"

#include <future>
#include <gtest/gtest.h>
#include <vector>

namespace kestrio {
namespace {

TEST(FileManager, pathsAreWrittenAsAddresses) {
    const struct {
        const char* path;
        const char* address;
    } rows[] = {{"/home/ada/a b.sqlite", "file:///home/ada/a%20b.sqlite"},
                {"/a-b_c.d~e", "file:///a-b_c.d~e"},
                {"/100%/#1?", "file:///100%25/%231%3F"},
                {"/\xc3\xa4", "file:///%C3%A4"}};
    for (const auto& [path, address] : rows)
        EXPECT_EQ(fileAddress(path), address);
}

/// A file manager that shows nothing and remembers what it was asked for.
struct AskedFileManager {
    static constexpr const char* name = "org.freedesktop.FileManager1";

    explicit AskedFileManager(const std::string& address) : bus(address) {
        object = sdbus::createObject(bus.connection(), "/org/freedesktop/FileManager1");
        object->registerMethod("ShowItems")
            .onInterface(name)
            .implementedAs(
                [this](const std::vector<std::string>& files, const std::string&) { asked.set_value(files); });
        object->finishRegistration();
        bus.serve(name);
    }
    ~AskedFileManager() {
        bus.stop();
        object.reset();
    }

    ServedBus bus;
    std::unique_ptr<sdbus::IObject> object;
    std::promise<std::vector<std::string>> asked;
};

TEST(FileManager, isAskedToShowTheFile) {
    PrivateBus bus;
    AskedFileManager manager(bus.address());
    EXPECT_TRUE(showInFileManager(bus.address(), "/home/ada/a b.sqlite"));
    EXPECT_EQ(manager.asked.get_future().get(), std::vector<std::string>{"file:///home/ada/a%20b.sqlite"});
}

TEST(FileManager, oneThatIsNotThereOrDoesNotAnswerShowsNothing) {
    PrivateBus bus;
    EXPECT_FALSE(showInFileManager(bus.address(), "/home/ada/a.sqlite")) << "there is none";
    {
        AskedFileManager stopped(bus.address());
        stopped.bus.pause(true);
        EXPECT_FALSE(showInFileManager(bus.address(), "/home/ada/a.sqlite")) << "it is stopped";
    }
    EXPECT_FALSE(showInFileManager("unix:path=/nowhere/at/all", "/home/ada/a.sqlite")) << "there is no bus";
}

} // namespace
} // namespace kestrio
