#pragma once

#include "Kestrio/Base/Descriptor.h" // whence everybody else takes it
