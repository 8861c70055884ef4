#pragma once

// The product identity of this host. Texts come from the host's version record in the store and fall
// back to the identity built into the platform when the store cannot be read. They stay valid for the
// whole process.
const char* ProductState_GetName();
const char* ProductState_GetVersion();
const char* ProductState_GetBuildNumberString();
const char* ProductState_GetCompilationOption();
