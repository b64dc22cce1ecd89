// The antennas' names for people.

const names: Record<string, string> = {
    AIR: "Terrestrial",
    CABLE: "Cable",
    SATELLITE: "Satellite",
    POD: "Cable card",
};

/// Antennas of single providers keep the set's word.
export function antennaName(antenna: string): string {
    return names[antenna] ?? antenna.replaceAll("_", " ");
}
