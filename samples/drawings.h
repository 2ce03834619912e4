#pragma once

#include "shapes.h"

/// The sample library's plant equipment. Every function draws one thing in the given colours;
/// square sheets unless said otherwise.
namespace samples {

// Pumps and other machines.

/// Which side a pump's outlet looks at.
enum class Facing { Left, Right };

Drawing centrifugalPump(const Colours& body, Facing outlet = Facing::Right);
Drawing pumpWithMotor(const Colours& body, const Colours& motorBody); ///< 140 wide
Drawing pumpSymbol(const Colours& body);
Drawing meteringPump(const Colours& body);
Drawing gearPump(const Colours& body);
Drawing submersiblePump(const Colours& body);
Drawing motor(const Colours& body); ///< 130 wide
Drawing motorSymbol(const Colours& body);
Drawing fan(const Colours& body);
Drawing compressor(const Colours& body);

// Valves, instruments and pipes.

/// How far open a valve is shown.
enum class Position { Closed, Open };

/// What an instrument measures; the value is its letter.
enum class Quantity : char { Pressure = 'P', Temperature = 'T', Level = 'L', Flow = 'F' };

Drawing handValve(const Colours& body);
Drawing motorValve(const Colours& body);
Drawing diaphragmValve(const Colours& body);
Drawing threeWayValve(const Colours& body);
Drawing checkValve(const Colours& body);
Drawing safetyValve(const Colours& body);
Drawing ballValve(const Colours& body, Position position);
Drawing butterflyValve(const Colours& body, Position position);
Drawing gauge(double share); ///< the pointer's place on the scale, 0 to 1
Drawing instrument(Quantity quantity);
Drawing thermometer(double share);
Drawing straightPipe(const Colours& body); ///< 140 by 60
Drawing pipeElbow(const Colours& body);
Drawing pipeTee(const Colours& body);

// Vessels, heat and conveying.

Drawing tank(const Colours& body, double level); ///< 80 wide; level 0 to 1 in the sight glass
Drawing lyingTank(const Colours& body);          ///< 150 by 90
Drawing silo(const Colours& body);               ///< 70 wide
Drawing agitatorVessel(const Colours& body);
Drawing sphereTank(const Colours& body);
Drawing tubeHeatExchanger(const Colours& body); ///< 150 by 80
Drawing plateHeatExchanger(const Colours& body);
Drawing coilHeater(const Colours& body);
Drawing boiler(const Colours& body); ///< 130 wide
Drawing coolingTower(const Colours& body);
Drawing conveyor(const Colours& body);      ///< 150 by 80
Drawing screwConveyor(const Colours& body); ///< 150 by 80

/// A pointer for drag and drop: an arrow whose tip is the sheet's top left corner, with the thing
/// at its tail.
Drawing pointerWith(const Drawing& thing);

} // namespace samples
