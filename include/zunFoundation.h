// zunFoundation.h - the whole public interface of Kelp_Foundation.
//
// Include this one header, link Kelp_Foundation::Kelp_Foundation (CMake) or
// `pkg-config --libs kelp_foundation`, and every family is at hand.
#ifndef ZUN_FOUNDATION_H
#define ZUN_FOUNDATION_H

#include "zunBBox.h"
#include "zunBlendFunction.h"
#include "zunCachedData.h"
#include "zunCharHelper.h"
#include "zunChunk.h"
#include "zunColor.h"
#include "zunConfig.h"
#include "zunDebug.h"
#include "zunDebugLog.h"
#include "zunDebugPrint.h"
#include "zunException.h"
#include "zunExternalReference.h"
#include "zunFastMesh.h"
#include "zunFeatureID.h"
#include "zunFile.h"
#include "zunFileDisk.h"
#include "zunFlags.h"
#include "zunGUID.h"
#include "zunGeometry.h"
#include "zunIndexIterator.h"
#include "zunInterpolator.h"
#include "zunMatrix44.h"
#include "zunMem.h"
#include "zunPath.h"
#include "zunPolyTess.h"
#include "zunQuaternion.h"
#include "zunRectangle.h"
#include "zunSelfTest.h"
#include "zunSignal.h"
#include "zunSimpleSettings.h"
#include "zunSlerp.h"
#include "zunString.h"
#include "zunStringList.h"
#include "zunSystem.h"
#include "zunTimer.h"
#include "zunToneMap.h"
#include "zunTypes.h"
#include "zunUTF.h"
#include "zunUserData.h"
#include "zunVersion.h"

#endif // ZUN_FOUNDATION_H
