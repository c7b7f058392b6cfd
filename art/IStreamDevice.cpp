#include <KORVAutlwin/art/IStreamDevice.h>

#include "ArtGsf.h"

IStreamDevice::IStreamDeviceError::IStreamDeviceError(const std::string& text)
    : std::ios_base::failure(text), mText(text)
{
}

const char* IStreamDevice::IStreamDeviceError::what() const noexcept
{
    // The standard failure appends the error category's text; ours stands alone.
    return mText.c_str();
}

IStreamDevice::IStreamDevice(GsfInput* input) : mInput(input)
{
    Reference();
}

IStreamDevice::IStreamDevice(GsfOutput* output) : mOutput(output)
{
    Reference();
}

IStreamDevice::IStreamDevice(const IStreamDevice& other) : mInput(other.mInput), mOutput(other.mOutput)
{
    Reference();
}

IStreamDevice& IStreamDevice::operator=(const IStreamDevice& other)
{
    if (this != &other) {
        Release();
        mInput = other.mInput;
        mOutput = other.mOutput;
        Reference();
    }
    return *this;
}

IStreamDevice::~IStreamDevice()
{
    Release();
}

void IStreamDevice::Reference()
{
    if (mInput)
        g_object_ref(mInput);
    if (mOutput)
        g_object_ref(mOutput);
}

void IStreamDevice::Release()
{
    if (mInput)
        g_object_unref(mInput);
    if (mOutput)
        g_object_unref(mOutput);
    mInput = nullptr;
    mOutput = nullptr;
}

std::streamsize IStreamDevice::read(char* buffer, std::streamsize count)
{
    if (!mInput)
        throw IStreamDeviceError("read failed");
    const gsf_off_t remaining = gsf_input_remaining(mInput);
    if (remaining <= 0)
        return -1;
    const std::streamsize size = count < remaining ? count : static_cast<std::streamsize>(remaining);
    if (size <= 0)
        return 0;
    if (!gsf_input_read(mInput, static_cast<size_t>(size), reinterpret_cast<guint8*>(buffer)))
        throw IStreamDeviceError("read failed");
    return size;
}

std::streamsize IStreamDevice::write(const char* buffer, std::streamsize count)
{
    if (!mOutput || count < 0)
        throw IStreamDeviceError("write failed");
    if (count > 0 && !gsf_output_write(mOutput, static_cast<size_t>(count), reinterpret_cast<const guint8*>(buffer)))
        throw IStreamDeviceError("write failed");
    return count;
}

std::streampos IStreamDevice::seek(boost::iostreams::stream_offset offset, std::ios_base::seekdir way)
{
    const GSeekType whence = way == std::ios_base::beg ? G_SEEK_SET : way == std::ios_base::cur ? G_SEEK_CUR : G_SEEK_END;
    if (mInput) {
        // gsf_input_seek reports failure with TRUE.
        if (gsf_input_seek(mInput, offset, whence))
            throw IStreamDeviceError("seek failed");
        return std::streampos(gsf_input_tell(mInput));
    }
    // ... and gsf_output_seek with FALSE.
    if (!mOutput || !gsf_output_seek(mOutput, offset, whence))
        throw IStreamDeviceError("seek failed");
    return std::streampos(gsf_output_tell(mOutput));
}
