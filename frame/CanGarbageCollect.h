#pragma once
/// \class CanGarbageCollect
/// An object that holds memory it can do without (caches, undo history,
/// pictures it can load again) implements this and registers with the main
/// frame (TessmaMDIFrame::RegisterCanGarbageCollect). When free memory runs low,
/// or an allocation has failed, the frame asks every registered object to give
/// back what it can.

class CanGarbageCollect
{
public:
    virtual ~CanGarbageCollect() = default;

    /// Gives back what the object can do without. Called on the main thread by
    /// the memory watch, and on whichever thread an allocation failed: it must
    /// not allocate, and it may unregister its own object.
    virtual void FreeMemoryNow() = 0;
};
