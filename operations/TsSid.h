#pragma once
/// \class TsSid
/// The security identifier of the user who runs this process. A Unix user has
/// the identifier `S-1-22-1-<uid>`: revision 1, authority 22, sub-authorities 1
/// and the uid, held in the binary layout of a SID.

#include <memory>
#include <string>

class TsSid
{
public:
    /// The identifier of the current user, looked up on `system` (null or empty:
    /// this machine). Any failed step leaves the object empty; other machines
    /// cannot be asked, so naming one gives an empty object too.
    explicit TsSid(const char* system = nullptr);
    /// A copy shares the bytes.
    TsSid(const TsSid& other) = default;
    TsSid& operator=(const TsSid& other) = default;
    ~TsSid();

    /// The identifier's bytes, or null when there is none.
    operator void*() const { return mSid.get(); }
    /// The identifier in its text form, "S-1-22-1-<uid>"; empty when there is none.
    std::string ToString() const;

    /// Whether `sid` points at a well-formed identifier (revision 1, at most 15 sub-authorities).
    static bool IsValidSid(const void* sid);
    /// The size in bytes of the well-formed identifier at `sid`.
    static unsigned long GetLengthSid(const void* sid);

private:
    std::shared_ptr<unsigned char[]> mSid;  // shared by copies; null when empty
};
