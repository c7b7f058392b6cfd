#include <KORVAutlwin/platform/DynamicLibrary.h>

#include <dlfcn.h>

namespace korva {

void* OpenDynamicLibrary(const char* path, std::string* error)
{
    ::dlerror();
    void* handle = ::dlopen(path, RTLD_NOW | RTLD_LOCAL);
    if (!handle && error) {
        const char* text = ::dlerror();
        *error = text ? text : "";
    }
    return handle;
}

bool CloseDynamicLibrary(void* handle)
{
    return ::dlclose(handle) == 0;
}

void* FindDynamicSymbol(void* handle, const char* name)
{
    return ::dlsym(handle, name);
}

std::string GetModulePath(const void* address)
{
    Dl_info info{};
    if (::dladdr(address, &info) == 0 || !info.dli_fname)
        return {};
    return info.dli_fname;
}

} // namespace korva
