#include <KORVAutlwin/frame/SetResourceInstance.h>

#include <KORVAutl/LanguageString.h>

SetResourceInstance::SetResourceInstance(const korva::ResourceModule* module)
    : mSavedModule(LanguageString::SetModule(module))
{
}

SetResourceInstance::SetResourceInstance(const SetResourceInstance& other) : mSavedModule(other.mSavedModule) {}

SetResourceInstance& SetResourceInstance::operator=(const SetResourceInstance& other)
{
    mSavedModule = other.mSavedModule;
    return *this;
}

SetResourceInstance::~SetResourceInstance()
{
    LanguageString::SetModule(mSavedModule);
}
