#include "states.h"

#include "drawings.h"

#include <array>
#include <functional>
#include <utility>

namespace samples {

namespace {

struct State {
    QString name;
    const Colours* colours;
};

struct Thing {
    QString name;
    QString kind;
    std::function<Drawing(const Colours&)> draw;
};

const std::array<State, 5> kStates{{{"aus", &kSteel},
                                    {"bereit", &kBlue},
                                    {"läuft", &kGreen},
                                    {"Warnung", &kAmber},
                                    {"Störung", &kRed}}};

std::vector<Thing> machines() {
    return {
        {"Kreiselpumpe", "gif", [](const Colours& body) { return centrifugalPump(body); }},
        {"Pumpe links", "bmp",
         [](const Colours& body) { return centrifugalPump(body, Facing::Left); }},
        {"Blockpumpe", "gif", [](const Colours& body) { return pumpWithMotor(body, kSteel); }},
        {"Pumpensymbol", "wmf", pumpSymbol},
        {"Dosierpumpe", "gif", meteringPump},
        {"Zahnradpumpe", "bmp", gearPump},
        {"Tauchpumpe", "emf", submersiblePump},
        {"Motor", "gif", motor},
        {"Motorsymbol", "ico", motorSymbol},
        {"Ventilator", "bmp", fan},
        {"Kompressor", "gif", compressor},
        {"Förderband", "gif", conveyor},
        {"Förderschnecke", "wmf", screwConveyor},
    };
}

std::vector<Thing> valves() {
    return {
        {"Handventil", "gif", handValve},
        {"Motorventil", "bmp", motorValve},
        {"Membranventil", "emf", diaphragmValve},
        {"Dreiwegeventil", "gif", threeWayValve},
        {"Rückschlagventil", "gif", checkValve},
        {"Sicherheitsventil", "wmf", safetyValve},
        {"Kugelhahn auf", "ico",
         [](const Colours& body) { return ballValve(body, Position::Open); }},
        {"Kugelhahn zu", "ico",
         [](const Colours& body) { return ballValve(body, Position::Closed); }},
        {"Klappe auf", "gif",
         [](const Colours& body) { return butterflyValve(body, Position::Open); }},
        {"Klappe zu", "gif",
         [](const Colours& body) { return butterflyValve(body, Position::Closed); }},
    };
}

std::vector<Thing> vessels() {
    return {
        {"Liegender Tank", "gif", lyingTank},     {"Silo", "emf", silo},
        {"Rührwerk", "bmp", agitatorVessel},      {"Kugeltank", "gif", sphereTank},
        {"Rohrbündel", "gif", tubeHeatExchanger}, {"Plattentauscher", "bmp", plateHeatExchanger},
        {"Heizschlange", "wmf", coilHeater},      {"Dampfkessel", "gif", boiler},
        {"Kühlturm", "gif", coolingTower},
    };
}

// What a display of a value shows from empty to full.
void addSteps(std::vector<Entry>& entries, const QString& name, const QString& kind,
              const std::function<Drawing(double)>& draw) {
    constexpr int kStep = 10;
    for (int percent = 0; percent <= 100; percent += kStep) {
        entries.push_back({QStringLiteral("%1 %2 %.%3").arg(name).arg(percent).arg(kind),
                           draw(percent / 100.0), 72});
    }
}

} // namespace

Group states() {
    Group group{"Zustände", {}};
    for (const auto& things : {machines(), valves(), vessels()}) {
        for (const Thing& thing : things) {
            for (const State& state : kStates) {
                group.entries.push_back({thing.name + " " + state.name + "." + thing.kind,
                                         thing.draw(*state.colours),
                                         thing.kind == "ico" ? 48 : 72});
            }
        }
    }
    addSteps(group.entries, "Tank", "gif", [](double share) { return tank(kSteel, share); });
    addSteps(group.entries, "Manometer", "bmp", gauge);
    addSteps(group.entries, "Thermometer", "gif", thermometer);
    return group;
}

} // namespace samples
