// Circular doubly linked lists; an empty head points to itself.
#pragma once

#include "uefi/Base.h"

inline VOID InitializeList(LIST_ENTRY* Head)
{
    Head->ForwardLink = Head;
    Head->BackLink = Head;
}

inline bool ListIsEmpty(const LIST_ENTRY* Head) { return Head->ForwardLink == Head; }

inline VOID InsertTail(LIST_ENTRY* Head, LIST_ENTRY* Entry)
{
    Entry->ForwardLink = Head;
    Entry->BackLink = Head->BackLink;
    Head->BackLink->ForwardLink = Entry;
    Head->BackLink = Entry;
}

inline VOID RemoveEntry(LIST_ENTRY* Entry)
{
    Entry->BackLink->ForwardLink = Entry->ForwardLink;
    Entry->ForwardLink->BackLink = Entry->BackLink;
}

// The record of type T whose member at offset Offset is Entry.
template <typename T> T* RecordOf(LIST_ENTRY* Entry, UINTN Offset)
{
    return reinterpret_cast<T*>(reinterpret_cast<UINT8*>(Entry) - Offset);
}
