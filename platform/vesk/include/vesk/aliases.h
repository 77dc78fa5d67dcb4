#pragma once

#include "vesk/VeskClass.h"
#include "vesk/VeskClassInfo.h"
#include "vesk/VeskClient.h"
#include "vesk/VeskError.h"
#include "vesk/VeskInterface.h"
#include "vesk/VeskMethodInfo.h"
#include "vesk/VeskPackage.h"
#include "vesk/VeskPackageInfo.h"
#include "vesk/VeskPropInfo.h"
#include "vesk/VeskValue.h"

// The names of the class system as libraries write them without a prefix. For their sources: a header that
// includes this puts all of them into the global namespace of whoever includes it.
using vesk::VeskClass;
using vesk::VeskClassInfo;
using vesk::VeskClient;
using vesk::VeskDataTypePtr;
using vesk::VeskError;
using vesk::VeskInterface;
using vesk::VeskInterfacePtr;
using vesk::VeskInterned;
using vesk::VeskInternedBase;
using vesk::VeskLoadInfo;
using vesk::VeskMethodInfo;
using vesk::VeskMethodSignature;
using vesk::VeskMethodSignaturePtr;
using vesk::VeskPackage;
using vesk::VeskPackageInfo;
using vesk::VeskPropInfo;
using vesk::VeskValue;
