#pragma once
/// \class IStreamDevice
/// A seekable Boost.Iostreams device over one stream of a compound file, so
/// that an archive reads from or writes to a stream of an art collection file:
///   boost::iostreams::stream<IStreamDevice> in(IStreamDevice(gsfInput));
/// The stream uses the library's default buffer.

#include <boost/iostreams/categories.hpp>
#include <boost/iostreams/positioning.hpp>

#include <ios>
#include <string>

typedef struct _GsfInput GsfInput;
typedef struct _GsfOutput GsfOutput;

class IStreamDevice
{
public:
    typedef char char_type;
    typedef boost::iostreams::seekable_device_tag category;

    /// What the device throws when the stream below fails. what() is the bare
    /// text: "read failed", "write failed", "seek failed".
    class IStreamDeviceError : public std::ios_base::failure
    {
    public:
        explicit IStreamDeviceError(const std::string& text);
        const char* what() const noexcept override;

    private:
        std::string mText;
    };

    /// A device that reads from `input` (it keeps a reference of its own).
    explicit IStreamDevice(GsfInput* input);
    /// A device that writes to `output` (it keeps a reference of its own).
    /// Closing the stream of the compound file is left to the caller.
    explicit IStreamDevice(GsfOutput* output);
    IStreamDevice(const IStreamDevice& other);
    IStreamDevice& operator=(const IStreamDevice& other);
    ~IStreamDevice();

    /// Up to `count` bytes into `buffer`; -1 at the end of the stream.
    std::streamsize read(char* buffer, std::streamsize count);
    /// Writes all `count` bytes; throws IStreamDeviceError when that fails.
    std::streamsize write(const char* buffer, std::streamsize count);
    /// Moves the position and returns the new one; throws "seek failed".
    std::streampos seek(boost::iostreams::stream_offset offset, std::ios_base::seekdir way);

private:
    void Reference();
    void Release();

    GsfInput* mInput = nullptr;
    GsfOutput* mOutput = nullptr;
};
