#include "catalogue.h"

#include "drawings.h"
#include "states.h"

#include <iterator>

namespace samples {

namespace {

std::vector<Group> pumps() {
    return {
        {"Pumpen",
         {{"Werk am Morgen.jpg", Daylight::Morning, 960},
          {"Pumpe mit Motor.bmp", pumpWithMotor(kBlue, kGreen), 224},
          {"Dosierpumpe.gif", meteringPump(kAmber), 128},
          {"Zahnradpumpe.bmp", gearPump(kBlue), 128, Depth::Colours256},
          {"Tauchpumpe.jpg", submersiblePump(kGreen), 480},
          {"Pumpe.ico", centrifugalPump(kBlue), 48},
          {"Pumpe Symbol.wmf", pumpSymbol(kBlue), 96},
          {"Pumpe ziehen.cur", pointerWith(centrifugalPump(kBlue)), 32}}},
        {"Pumpen/Kreiselpumpen",
         {{"Kreiselpumpe.bmp", centrifugalPump(kBlue), 160},
          {"Kreiselpumpe links.bmp", centrifugalPump(kBlue, Facing::Left), 160},
          {"Kreiselpumpe läuft.gif", centrifugalPump(kGreen), 96},
          {"Kreiselpumpe Störung.gif", centrifugalPump(kRed), 96},
          {"Kreiselpumpe Wartung.gif", centrifugalPump(kAmber), 96},
          {"Kreiselpumpe vektor.emf", centrifugalPump(kBlue), 160},
          {"Blockpumpe.jpg", pumpWithMotor(kBlue, kSteel), 640},
          {"Symbol läuft.wmf", pumpSymbol(kGreen), 96},
          {"Symbol Störung.wmf", pumpSymbol(kRed), 96}}},
        {"Pumpen/Kreiselpumpen/Edelstahl",
         {{"Edelstahlpumpe.jpg", centrifugalPump(kSteel), 640},
          {"Edelstahlpumpe 160.bmp", centrifugalPump(kSteel), 160},
          {"Hygienepumpe.bmp", pumpWithMotor(kSteel, kBlue), 196, Depth::Colours256},
          {"Edelstahlpumpe rund.gif", centrifugalPump(kSteel, Facing::Left), 112},
          {"Pumpe Edelstahl.ico", centrifugalPump(kSteel), 48},
          {"Edelstahlpumpe vektor.wmf", centrifugalPump(kSteel), 128}}},
        {"Pumpen/Antriebe",
         {{"Motor.bmp", motor(kBlue), 169},
          {"Motor läuft.gif", motor(kGreen), 130},
          {"Motor Störung.gif", motor(kRed), 130},
          {"Motor Prüfstand.jpg", motor(kSteel), 640},
          {"Motor Symbol.bmp", motorSymbol(kAmber), 72, Depth::Colours16},
          {"Motor M.ico", motorSymbol(kGreen), 48},
          {"Motor vektor.emf", motor(kBlue), 130},
          {"Ventilator.bmp", fan(kGreen), 144},
          {"Kompressor.jpg", compressor(kBlue), 480}}},
    };
}

std::vector<Group> valves() {
    return {
        {"Armaturen",
         {{"Absperrklappe auf.bmp", butterflyValve(kBlue, Position::Open), 128},
          {"Absperrklappe zu.bmp", butterflyValve(kBlue, Position::Closed), 128},
          {"Rohr.gif", straightPipe(kSteel), 140},
          {"Rohrbogen.gif", pipeElbow(kSteel), 100},
          {"T-Stück.gif", pipeTee(kSteel), 100},
          {"Rohrbogen grün.wmf", pipeElbow(kGreen), 100},
          {"Armatur.ico", ballValve(kRed, Position::Open), 48},
          {"Verrohrung.jpg", pipeTee(kBlue), 480}}},
        {"Armaturen/Ventile",
         {{"Handventil.bmp", handValve(kBlue), 128},
          {"Kugelhahn auf.bmp", ballValve(kGreen, Position::Open), 128, Depth::Colours256},
          {"Kugelhahn zu.bmp", ballValve(kRed, Position::Closed), 128, Depth::Colours256},
          {"Rückschlagventil.gif", checkValve(kBlue), 112},
          {"Dreiwegeventil.gif", threeWayValve(kAmber), 112},
          {"Sicherheitsventil.emf", safetyValve(kRed), 112},
          {"Handventil vektor.wmf", handValve(kBlue), 112},
          {"Ventil.ico", handValve(kRed), 48},
          {"Ventil ziehen.cur", pointerWith(handValve(kRed)), 32}}},
        {"Armaturen/Ventile/Motorventile",
         {{"Motorventil.bmp", motorValve(kBlue), 128},
          {"Motorventil auf.gif", motorValve(kGreen), 112},
          {"Motorventil zu.gif", motorValve(kRed), 112},
          {"Motorventil fährt.gif", motorValve(kAmber), 112},
          {"Membranventil.bmp", diaphragmValve(kBlue), 128, Depth::Colours16},
          {"Membranventil auf.emf", diaphragmValve(kGreen), 112},
          {"Motorventil Edelstahl.jpg", motorValve(kSteel), 480}}},
        {"Armaturen/Messtechnik",
         {{"Manometer.bmp", gauge(0.62), 160},
          {"Manometer leer.bmp", gauge(0.0), 160},
          {"Manometer nah.jpg", gauge(0.4), 480},
          {"Druck.gif", instrument(Quantity::Pressure), 80},
          {"Temperatur.gif", instrument(Quantity::Temperature), 80},
          {"Füllstand.gif", instrument(Quantity::Level), 80},
          {"Durchfluss.wmf", instrument(Quantity::Flow), 80},
          {"Thermometer.ico", thermometer(0.7), 48},
          {"Thermometer kalt.bmp", thermometer(0.15), 128}}},
    };
}

std::vector<Group> vessels() {
    return {
        {"Behälter",
         {{"Tanklager am Abend.jpg", Daylight::Evening, 960},
          {"Tanklager mittags.jpg", Daylight::Noon, 960},
          {"Rührwerk.bmp", agitatorVessel(kSteel), 160},
          {"Kugeltank.bmp", sphereTank(kSteel), 160},
          {"Silo.gif", silo(kAmber), 90},
          {"Kühlturm.bmp", coolingTower(kSteel), 144},
          {"Behälter.ico", tank(kSteel, 0.6), 48},
          {"Behälter ziehen.cur", pointerWith(tank(kSteel, 0.6)), 32}}},
        {"Behälter/Tanks",
         {{"Tank leer.gif", tank(kSteel, 0), 96},
          {"Tank halb.gif", tank(kSteel, 0.5), 96},
          {"Tank voll.gif", tank(kSteel, 0.95), 96},
          {"Tank blau.bmp", tank(kBlue, 0.7), 128},
          {"Liegender Tank.bmp", lyingTank(kSteel), 195},
          {"Gastank.jpg", lyingTank(kAmber), 640},
          {"Rührkessel.jpg", agitatorVessel(kSteel), 480},
          {"Silo vektor.emf", silo(kSteel), 84},
          {"Tank vektor.wmf", tank(kSteel, 0.4), 96}}},
        {"Behälter/Tanks/Wärmetauscher",
         {{"Rohrbündel.bmp", tubeHeatExchanger(kSteel), 210},
          {"Plattentauscher.bmp", plateHeatExchanger(kBlue), 144},
          {"Heizschlange.gif", coilHeater(kSteel), 120},
          {"Rohrbündel blau.jpg", tubeHeatExchanger(kBlue), 640},
          {"Dampfkessel.jpg", boiler(kBlue), 640},
          {"Dampfkessel rot.bmp", boiler(kRed), 182, Depth::Colours256},
          {"Rohrbündel vektor.emf", tubeHeatExchanger(kSteel), 180}}},
        {"Behälter/Fördertechnik",
         {{"Förderband.bmp", conveyor(kSteel), 195},
          {"Förderband läuft.gif", conveyor(kGreen), 150},
          {"Förderband Störung.gif", conveyor(kRed), 150},
          {"Förderschnecke.bmp", screwConveyor(kSteel), 195},
          {"Förderschnecke vektor.wmf", screwConveyor(kBlue), 150},
          {"Förderband mit Paketen.jpg", conveyor(kAmber), 640}}},
    };
}

} // namespace

std::vector<Group> catalogue() {
    std::vector<Group> groups = pumps();
    for (auto part : {valves(), vessels()}) {
        std::move(part.begin(), part.end(), std::back_inserter(groups));
    }
    groups.push_back(states());
    return groups;
}

} // namespace samples
