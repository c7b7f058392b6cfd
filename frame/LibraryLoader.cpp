#include <KORVAutlwin/frame/LibraryLoader.h>

#include <KORVAutlwin/platform/DynamicLibrary.h>

#include <KORVAutl/Exception.h>
#include <KORVAutl/TsFileUtl.h>
#include <KORVAutl/TsString.h>

#include <cerrno>
#include <cstring>
#include <string>

namespace {

constexpr unsigned int kLoadFailed = 30600;       // "The library %s could not be loaded: %s."
constexpr unsigned int kNothingLoaded = 30601;    // "No library is loaded to look up the function %s in: %s."

void* Load(const char* path)
{
    const std::string name = path ? path : "";
    // dlopen would take an empty name for the program itself.
    if (name.empty())
        throw Exception(TsString::Format("The file %s does not exist.", name.c_str()));
    // A bare name would only be searched in the system's folders: the
    // application's own folder goes first, as it does for its plug-ins.
    if (name.find('/') == std::string::npos) {
        const std::string local = TsPathAppend(TsGetExecutableDirectory().c_str(), name.c_str());
        if (FileExist(local.c_str()) == 2)
            if (void* handle = korva::OpenDynamicLibrary(local.c_str()))
                return handle;
    }
    std::string systemText;
    if (void* handle = korva::OpenDynamicLibrary(name.c_str(), &systemText))
        return handle;
    if (systemText.empty())
        systemText = std::strerror(ENOENT);
    if (FileExist(name.c_str()) == 0)
        throw Exception(TsString::Format("The file %s does not exist.", name.c_str()));
    throw Exception(TsString::Format(kLoadFailed, name.c_str(), systemText.c_str()));
}

} // namespace

LibraryLoader::LibraryLoader() : mHandle(nullptr) {}

LibraryLoader::LibraryLoader(void* handle) : mHandle(handle) {}

LibraryLoader::LibraryLoader(const char* path) : mHandle(Load(path)) {}

LibraryLoader::~LibraryLoader()
{
    Close();
}

LibraryLoader& LibraryLoader::operator=(const LibraryLoader& other)
{
    if (mHandle != other.mHandle) {
        Close();
        mHandle = other.mHandle;
    }
    return *this;
}

bool LibraryLoader::Open(const char* path)
{
    if (!Close())
        return false;
    mHandle = Load(path);
    return true;
}

bool LibraryLoader::Close()
{
    if (!mHandle)
        return true;
    if (!korva::CloseDynamicLibrary(mHandle))
        return false;
    mHandle = nullptr;
    return true;
}

void* LibraryLoader::GetFunction(const char* name) const
{
    if (!mHandle)
        throw Exception(TsString::Format(kNothingLoaded, name ? name : "", std::strerror(EBADF)));
    return korva::FindDynamicSymbol(mHandle, name ? name : "");
}

void* LibraryLoader::Detach()
{
    void* handle = mHandle;
    mHandle = nullptr;
    return handle;
}
