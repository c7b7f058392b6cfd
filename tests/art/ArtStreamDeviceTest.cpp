#include "../utl/TempDir.h"

#include <KORVAutlwin/art/ArtStorageReader.h>
#include <KORVAutlwin/art/ArtStorageWriter.h>
#include <KORVAutlwin/art/IStreamDevice.h>

#include <boost/iostreams/stream.hpp>

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

using korva::ArtStorageReader;
using korva::ArtStorageWriter;

namespace {

// Writes `text` into stream "s" of a new compound file through the device.
void WriteThroughDevice(const std::string& path, const std::string& text)
{
    ArtStorageWriter writer(path);
    const auto stream = writer.CreateStream("s");
    ASSERT_TRUE(stream);
    {
        boost::iostreams::stream<IStreamDevice> out{IStreamDevice(stream.get())};
        ASSERT_TRUE((out << text).flush().good());
    }
    ASSERT_TRUE(writer.CloseStream(stream) && writer.Commit());
}

std::string ReadOf(const std::string& path, const std::string& name = "s")
{
    std::string content;
    return ArtStorageReader::ReadStreamOf(path, name, content) ? content : "(unreadable)";
}

TEST(ArtStreamDeviceTest, ReadsWritesAndSeeksAStreamOfACompoundFile)
{
    TempDir dir;
    // More than the stream buffer and more than a small-block stream, so that both kinds are crossed.
    std::string text;
    for (int i = 0; text.size() < 20000; ++i)
        text += std::to_string(i) + " ";
    WriteThroughDevice(dir.File("a.cf"), text);

    // The stream outlives the reader that opened it.
    const std::shared_ptr<GsfInput> input = ArtStorageReader(dir.File("a.cf")).OpenStream("s");
    ASSERT_TRUE(input);
    boost::iostreams::stream<IStreamDevice> in{IStreamDevice(input.get())};
    in.exceptions(std::ios_base::badbit);
    EXPECT_EQ(text, std::string(std::istreambuf_iterator<char>(in), {}));
    in.clear();
    in.seekg(6000);
    EXPECT_EQ(6000, in.tellg());
    EXPECT_EQ(text[6000], in.get());
    in.seekg(-3, std::ios_base::end);
    std::string tail(3, '\0');
    in.read(tail.data(), 3);
    EXPECT_EQ(text.substr(text.size() - 3), tail);
    in.seekg(-10, std::ios_base::cur);
    EXPECT_EQ(static_cast<std::streamoff>(text.size() - 10), static_cast<std::streamoff>(in.tellg()));

    IStreamDevice device(input.get());
    device.seek(0, std::ios_base::end);
    char byte = 0;
    EXPECT_EQ(-1, device.read(&byte, 1));
    try {
        device.seek(-1, std::ios_base::beg);
        ADD_FAILURE() << "no exception";
    } catch (const IStreamDevice::IStreamDeviceError& error) {
        EXPECT_STREQ("seek failed", error.what());
    }
    EXPECT_THROW(device.seek(1, std::ios_base::end), std::ios_base::failure);
    EXPECT_THROW(device.write("x", 1), IStreamDevice::IStreamDeviceError) << "a device for reading writes nothing";
    // Through a stream with bad-bit exceptions, the device's failure arrives as itself.
    EXPECT_THROW(in.seekg(-1, std::ios_base::beg), IStreamDevice::IStreamDeviceError);
}

TEST(ArtStreamDeviceTest, WriterReplacesItsTargetOnlyOnCommit)
{
    TempDir dir;
    WriteThroughDevice(dir.File("a.cf"), "old");
    {
        ArtStorageWriter writer(dir.File("a.cf"));
        ASSERT_TRUE(writer.WriteStream("s", "new", 3));
        // Names the format cannot hold, and doubles, are refused.
        for (const std::string& name : {std::string(), std::string("s"), std::string(32, 'n')})
            EXPECT_FALSE(writer.CreateStream(name)) << name;
        EXPECT_TRUE(writer.WriteStream(std::string(31, 'n'), "", 0));
        // Not committed: dropped, without a file left behind.
    }
    EXPECT_EQ("old", ReadOf(dir.File("a.cf")));
    EXPECT_EQ(1, std::distance(std::filesystem::directory_iterator(dir.Path()), {}));
    {
        ArtStorageWriter writer(dir.File("a.cf"));
        ArtStorageReader old(dir.File("a.cf"));
        ASSERT_TRUE(writer.WriteStream("t", "added", 5) && writer.CopyMissing(old) && writer.Commit());
        EXPECT_FALSE(writer.Commit());
    }
    ArtStorageReader reader(dir.File("a.cf"));
    EXPECT_EQ((std::vector<std::string>{"s", "t"}), reader.GetStreamNames());
    std::string content;
    ASSERT_TRUE(reader.ReadStream("s", content));
    EXPECT_EQ("old", content);
    EXPECT_FALSE(reader.ReadStream("s", content, 2));
    EXPECT_FALSE(reader.ReadStream("u", content));
    EXPECT_FALSE(ArtStorageWriter(dir.File("missing/a.cf")).IsOpen());
}

TEST(ArtStreamDeviceTest, FilesKeptOpenForPicturesAreOpenedAfreshWhenReplaced)
{
    TempDir dir;
    const std::string path = dir.File("a.cf");
    WriteThroughDevice(path, "first");
    EXPECT_EQ("first", ReadOf(path));
    // Overwritten in place by a copy of another file.
    WriteThroughDevice(dir.File("b.cf"), "second, in place");
    WriteFile(path, ReadFile(dir.File("b.cf")));
    EXPECT_EQ("second, in place", ReadOf(path));
    std::remove(path.c_str());
    EXPECT_EQ("(unreadable)", ReadOf(path));
    EXPECT_EQ("(unreadable)", ReadOf(dir.File("b.cf"), "t"));

    // More files than are kept open, read from several threads at once.
    for (int i = 0; i < 6; ++i)
        WriteThroughDevice(dir.File(std::to_string(i) + ".cf"), "file " + std::to_string(i));
    std::atomic<int> wrong{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&, t] {
            for (int i = 0; i < 60; ++i) {
                const std::string name = std::to_string((i * 5 + t) % 6);
                wrong += ReadOf(dir.File(name + ".cf")) != "file " + name;
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(0, wrong.load());
}

} // namespace
