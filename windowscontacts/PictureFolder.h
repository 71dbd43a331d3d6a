// Where the pictures of Windows contacts lie: the address book keeps paths, and the files stand in
// a hidden folder of the user's.
#pragma once

#include <string>

// The path of a new picture in the folder "ContactImg" of the user's documents, or of his pictures
// where there are none; the folder is made where it is missing, with the rights of its parent, and
// hidden. No file is made.
// Returns: the path; empty where the user has neither folder. Throws std::bad_alloc.
// Thread:  the apartment thread.
std::wstring NewContactPicturePath();
