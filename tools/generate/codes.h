// Layers, line codes, text codes and symbol codes of the sample symbology in data/symbology/VKMSym.

#pragma once

#include <cstdint>

namespace generate {

enum Layer : int {
    layerBoundaries = 1,
    layerParcelNumbers = 2,
    layerLandUse = 3,
    layerBuildings = 4,
    layerBuildingMarks = 5,
    layerFences = 6,
    layerNames = 7,
    layerHouseNumbers = 8,
    layerPoints = 9,
    layerWater = 10,
    layerNetworks = 11,
    layerCount = 11,
};

// K values of line elements.
enum LineCode : int32_t {
    codeNone = 0,
    codeRoadEdge = 1029,
    codeWaterEdge = 1030,
    codeFence = 1031,
    codeWall = 1032,
    codePath = 1033,
    codePowerLine = 1035,
    codeLandUseLimit = 1038,
    codeMunicipality = 21600,
    codeDistrict = 21700,
    codeBuilding = 21800,
    codeOutbuilding = 21810,
    codeBuildingDetail = 21820,
    codeParcel = 21900,
    codeParcelUncertain = 21910,
};

// K values of texts on the names layer; the reader gives each its size and font.
enum TextCode : int32_t {
    textMunicipality = 1001,  // 8.5 mm
    textDistrict = 1004,      // 6.7 mm
    textLocalName = 1009,     // 4.4 mm
    textSmallName = 1010,     // 2.9 mm
    textWater = 1013,         // 4.4 mm
    textRoad = 1014,          // 3.4 mm
    textStreet = 1015,        // 2.3 mm
    textRemark = 1018,        // 1.7 mm
};

// S values.
enum SymbolCode : int32_t {
    symbolBoundaryPoint = 101,
    symbolBoundaryStone = 102,
    symbolBoundaryMark = 103,
    symbolDistrictStone = 104,
    symbolTriangulationPoint = 105,
    symbolTraversePoint = 106,
    symbolBenchmark = 107,
    symbolControlPoint = 108,
    symbolMasonry = 201,
    symbolTimber = 202,
    symbolUnderConstruction = 203,
    symbolChurch = 204,
    symbolChapel = 205,
    symbolMonument = 206,
    symbolWaysideCross = 207,
    symbolWell = 208,
    symbolPole = 209,
    symbolMast = 210,
    symbolTransformer = 211,
    symbolBroadleafTree = 212,
    symbolConifer = 213,
    symbolLamp = 214,
    symbolFlow = 217,
    symbolGarden = 301,
    symbolOrchard = 302,
    symbolVineyard = 303,
    symbolHopGarden = 304,
    symbolMeadow = 305,
    symbolPasture = 306,
    symbolBroadleafForest = 307,
    symbolConiferousForest = 308,
    symbolStillWater = 309,
    symbolMarsh = 311,
    symbolPark = 313,
    symbolCemetery = 314,
    symbolYard = 317,
    symbolSports = 318,
};

}  // namespace generate
