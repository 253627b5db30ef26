// Definitions of the process-wide tolerance and the named constants.
#include "kxrender/AcGeContext.h"
#include "kxrender/AcGeLine3d.h"
#include "kxrender/AcGeMatrix3d.h"
#include "kxrender/AcGePlane.h"
#include "kxrender/AcGePoint2d.h"
#include "kxrender/AcGePoint3d.h"
#include "kxrender/AcGeVector2d.h"
#include "kxrender/AcGeVector3d.h"

AcGeTol AcGeContext::gTol;

const AcGePoint2d AcGePoint2d::kOrigin(0.0, 0.0);
const AcGeVector2d AcGeVector2d::kIdentity(0.0, 0.0);
const AcGeVector2d AcGeVector2d::kXAxis(1.0, 0.0);
const AcGeVector2d AcGeVector2d::kYAxis(0.0, 1.0);

const AcGePoint3d AcGePoint3d::kOrigin(0.0, 0.0, 0.0);
const AcGeVector3d AcGeVector3d::kIdentity(0.0, 0.0, 0.0);
const AcGeVector3d AcGeVector3d::kXAxis(1.0, 0.0, 0.0);
const AcGeVector3d AcGeVector3d::kYAxis(0.0, 1.0, 0.0);
const AcGeVector3d AcGeVector3d::kZAxis(0.0, 0.0, 1.0);

const AcGeMatrix3d AcGeMatrix3d::kIdentity;

const AcGePlane AcGePlane::kXYPlane(AcGePoint3d(0.0, 0.0, 0.0), AcGeVector3d(0.0, 0.0, 1.0));
const AcGePlane AcGePlane::kYZPlane(AcGePoint3d(0.0, 0.0, 0.0), AcGeVector3d(1.0, 0.0, 0.0));
const AcGePlane AcGePlane::kZXPlane(AcGePoint3d(0.0, 0.0, 0.0), AcGeVector3d(0.0, 1.0, 0.0));

const AcGeLine3d AcGeLine3d::kXAxis(AcGePoint3d(0.0, 0.0, 0.0), AcGeVector3d(1.0, 0.0, 0.0));
const AcGeLine3d AcGeLine3d::kYAxis(AcGePoint3d(0.0, 0.0, 0.0), AcGeVector3d(0.0, 1.0, 0.0));
const AcGeLine3d AcGeLine3d::kZAxis(AcGePoint3d(0.0, 0.0, 0.0), AcGeVector3d(0.0, 0.0, 1.0));
