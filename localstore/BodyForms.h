// The two forms of a message's body, plain text (PR_BODY) and compressed RTF (PR_RTF_COMPRESSED).
// The store says that it knows RTF (STORE_RTF_OK), so that a text that comes alone gets its RTF
// here.
//
//   text alone written       RTF is made of it, in place of any that was there: that one told of
//                            another text. This holds where the same save deletes the RTF, too.
//   both written             both stay as they came; the caller answers for them.
//   RTF alone written        the text stays as it is.
//   RTF alone deleted        it is gone and the text stays, as the caller asked for.
//   text alone deleted       RTF that was made here goes with it, or the text would come back to
//                            who reads RTF; a caller's own RTF holds more than the text and stays.
//
// "Written" is one save, whether by SetProps or through a stream and in whatever order.
#pragma once

#include "localstore/StoredObject.h"

// Texts of more code units get no RTF, which could take nine times their size in bytes.
inline constexpr std::size_t kLongestTextForRtf = 8u << 20;

// Brings the RTF of a message in step with changes of its text that were written just before;
// inside the same transaction. Throws DatabaseError and std::bad_alloc.
void FollowBodyChange(Database& database, PropertyOwner message, const PropertyChanges& changes);
