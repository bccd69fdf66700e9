#include "Spatial.h"

#include <cfloat>

namespace fakeds
{

namespace
{

bool inRange(D3DVALUE value, D3DVALUE low, D3DVALUE high)
{
    return value >= low && value <= high;
}

} // namespace

D3DVECTOR vector3(D3DVALUE x, D3DVALUE y, D3DVALUE z)
{
    D3DVECTOR v;
    v.x = x;
    v.y = y;
    v.z = z;
    return v;
}

DS3DBUFFER defaultBuffer3D()
{
    DS3DBUFFER p{};
    p.dwSize = sizeof(DS3DBUFFER);
    p.vPosition = vector3(0, 0, 0);
    p.vVelocity = vector3(0, 0, 0);
    p.dwInsideConeAngle = DS3D_DEFAULTCONEANGLE;
    p.dwOutsideConeAngle = DS3D_DEFAULTCONEANGLE;
    p.vConeOrientation = vector3(0, 0, 1);
    p.lConeOutsideVolume = DS3D_DEFAULTCONEOUTSIDEVOLUME;
    p.flMinDistance = DS3D_DEFAULTMINDISTANCE;
    p.flMaxDistance = DS3D_DEFAULTMAXDISTANCE;
    p.dwMode = DS3DMODE_NORMAL;
    return p;
}

DS3DLISTENER defaultListener()
{
    DS3DLISTENER p{};
    p.dwSize = sizeof(DS3DLISTENER);
    p.vPosition = vector3(0, 0, 0);
    p.vVelocity = vector3(0, 0, 0);
    p.vOrientFront = vector3(0, 0, 1);
    p.vOrientTop = vector3(0, 1, 0);
    p.flDistanceFactor = DS3D_DEFAULTDISTANCEFACTOR;
    p.flRolloffFactor = DS3D_DEFAULTROLLOFFFACTOR;
    p.flDopplerFactor = DS3D_DEFAULTDOPPLERFACTOR;
    return p;
}

bool isValidBuffer3D(const DS3DBUFFER& p)
{
    return p.dwInsideConeAngle <= DS3D_MAXCONEANGLE && p.dwOutsideConeAngle <= DS3D_MAXCONEANGLE &&
           p.lConeOutsideVolume >= DSBVOLUME_MIN && p.lConeOutsideVolume <= DSBVOLUME_MAX &&
           p.dwMode <= DS3DMODE_DISABLE;
}

bool isValidListener(const DS3DLISTENER& p)
{
    return p.flDistanceFactor >= DS3D_MINDISTANCEFACTOR &&
           inRange(p.flRolloffFactor, DS3D_MINROLLOFFFACTOR, DS3D_MAXROLLOFFFACTOR) &&
           inRange(p.flDopplerFactor, DS3D_MINDOPPLERFACTOR, DS3D_MAXDOPPLERFACTOR);
}

bool isValidApply(DWORD apply)
{
    return apply == DS3D_IMMEDIATE || apply == DS3D_DEFERRED;
}

} // namespace fakeds
