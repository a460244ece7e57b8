// Judges what the edge node sends and understands, by the public standard's rules of sequence and with the decoder and
// encoder of the standard's own makers.
import { execFileSync } from "node:child_process";
import { createRequire } from "node:module";
import assert from "node:assert/strict";

const [program, modules] = process.argv.slice(2);
const sparkplug = createRequire(modules + "/")("sparkplug-payload").get("spBv1.0");
const qualities = [0, 192, 500];

// The rules of one edge node's messages. Each throws where a message breaks it.
export class SequenceRules {
    #will = null;
    #next = null; // the sequence number that comes next; null: not born
    #metrics = new Map(); // of each device that is born: its aliases
    #hostIsOnline = false;

    hostSaid(online) {
        this.#hostIsOnline = online;
    }

    connect(will) {
        const number = bdSeqOf(will);
        if (this.#will !== null)
            assert.equal(number, (this.#will + 1) % 256, "bdSeq goes up by one with each connection");
        assert.equal(will.seq, undefined, "a will has no sequence number");
        this.#will = number;
        this.#next = null;
        this.#metrics.clear();
    }

    take(kind, device, payload) {
        if (kind === "NDEATH")
            return this.#die(payload);
        assert(this.#hostIsOnline, `${kind} while the primary host is away`);
        if (kind === "NBIRTH")
            return this.#beBorn(payload);
        assert.notEqual(this.#next, null, `${kind} before NBIRTH`);
        this.#count(payload, kind);
        if (kind === "DBIRTH")
            this.#bear(device, payload);
        else if (kind === "DDATA")
            this.#judgeData(device, payload);
        else if (kind === "DDEATH")
            assert(this.#metrics.delete(device), `DDEATH of ${device}, which is not born`);
        else
            assert.fail(`unknown kind ${kind}`);
    }

    #die(payload) {
        assert.equal(bdSeqOf(payload), this.#will, "NDEATH bears the number of its connection");
        assert.equal(payload.seq, undefined, "NDEATH has no sequence number");
        this.#next = null;
        this.#metrics.clear();
    }

    #beBorn(payload) {
        assert.equal(Number(payload.seq), 0, "NBIRTH begins the sequence");
        assert.equal(bdSeqOf(payload), this.#will, "NBIRTH bears the number of its will");
        assert(payload.metrics.some((one) => one.name === "Node Control/Rebirth" && one.value === false));
        this.#next = 1;
        this.#metrics.clear();
    }

    #count(payload, kind) {
        assert.equal(Number(payload.seq), this.#next, `sequence number of ${kind}`);
        this.#next = (this.#next + 1) % 256;
    }

    #bear(device, payload) {
        assert(!this.#metrics.has(device), `DBIRTH of ${device}, which lives`);
        const taken = new Set([...this.#metrics.values()].flatMap((one) => [...one]));
        const own = new Set();
        for (const metric of payload.metrics) {
            assert(metric.name, "a birth names each metric");
            assert(metric.type && metric.timestamp, `type and time of ${metric.name}`);
            assert(qualities.includes(metric.properties.Quality.value), `quality of ${metric.name}`);
            const alias = Number(metric.alias);
            assert(!taken.has(alias) && !own.has(alias), `alias ${alias} twice`);
            own.add(alias);
        }
        this.#metrics.set(device, own);
    }

    #judgeData(device, payload) {
        assert(this.#metrics.has(device), `DDATA of ${device}, which is not born`);
        for (const metric of payload.metrics) {
            assert(!metric.name, "data goes by alias");
            assert(this.#metrics.get(device).has(Number(metric.alias)), `alias ${metric.alias} of another device`);
        }
    }
}

function bdSeqOf(payload) {
    const metric = payload.metrics.find((one) => one.name === "bdSeq");
    assert.equal(metric?.type, "Int64");
    return Number(metric.value);
}

function judgeDay(lines, rules) {
    const seen = { births: [], data: [] };
    for (const line of lines) {
        if (line.what === "host online" || line.what === "host offline")
            rules.hostSaid(line.what === "host online");
        if (!line.topic)
            continue;
        const [space, group, kind, node, device] = line.topic.split("/");
        assert.deepEqual([space, group, node], ["spBv1.0", "sbus", "north"]);
        assert.equal(line.qos, kind === "NDEATH" ? 1 : 0);
        const payload = sparkplug.decodePayload(Buffer.from(line.payload, "base64"));
        if (line.what === "will")
            rules.connect(payload);
        else
            rules.take(kind, device, payload);
        if (kind === "DBIRTH")
            seen.births.push({ device, payload });
        if (kind === "DDATA")
            seen.data.push(...payload.metrics);
    }
    return seen;
}

function understood(kind, device, metrics) {
    const topic = ["spBv1.0", "sbus", kind, "north", device].filter(Boolean).join("/");
    const payload = Buffer.from(sparkplug.encodePayload({ timestamp: 1, metrics })).toString("base64");
    return execFileSync(program, [topic, payload], { encoding: "utf8" }).trim().split("\n").join("; ");
}

const lines = execFileSync(program, { encoding: "utf8" }).trim().split("\n").map((line) => JSON.parse(line));
const seen = judgeDay(lines, new SequenceRules());
assert(seen.births.length >= 6 && seen.data.length >= 300, "the day was played");
const first = (name) => seen.data.find((one) => Number(one.alias) === name);
assert.deepEqual([first(0).type, first(0).value], ["Boolean", true]);
assert.deepEqual([first(1).type, first(1).value], ["Int32", -70000]);
assert.deepEqual([first(2).type, first(2).value], ["Double", 3.85]);
assert.deepEqual([first(3).type, first(3).value], ["Double", 1.5]);
const kept = seen.data.filter((one) => one.isHistorical);
assert.deepEqual(kept.map((one) => one.value), [8, 2.5, 9]);
const levels = seen.births.flatMap((one) => one.payload.metrics).filter((one) => one.name === "LEVEL");
assert(levels.every((one) => one.properties.engUnit.value === "m"));
assert.deepEqual(levels.map((one) => one.value), [null, null, 3.85, 3.85]);

// The rules catch what they are for: each of these transcripts has one message too few, too many or out of place.
const message = (kind, device) => lines.findIndex((one) => one.what === "message" && one.topic.includes(`/${kind}/`) &&
    (!device || one.topic.endsWith(device)));
const broken = {
    "no NBIRTH": (all) => all.splice(message("NBIRTH"), 1),
    "no DBIRTH": (all) => all.splice(message("DBIRTH"), 1),
    "a message lost": (all) => all.splice(message("DDATA"), 1),
    "data in front of births": (all) => all.splice(message("NBIRTH"), 0, ...all.splice(message("DDATA"), 1)),
    "host not there": (all) => all.splice(all.findIndex((one) => one.what === "host online"), 1),
    "a will of another connection": (all) => all.splice(all.findIndex((one) => one.what === "will"), 1),
};
for (const [what, breaks] of Object.entries(broken)) {
    const copy = [...lines];
    breaks(copy);
    assert.throws(() => judgeDay(copy, new SequenceRules()), assert.AssertionError, `nothing is said of: ${what}`);
}

assert.equal(understood("NCMD", "", [{ name: "Node Control/Rebirth", type: "Boolean", value: true }]), "rebirth");
assert.equal(understood("DCMD", "waterworks.pumps", [
    { name: "RUN", type: "Boolean", value: true },
    { alias: 1, type: "Int32", value: -5 },
    { name: "LEVEL", type: "Double", value: 3.85 },
    { name: "STARTS", type: "Int16", value: -2 },
    { name: "STARTS", type: "UInt32", value: 4000000000 },
    { name: "STARTS", type: "Int64", value: 12 },
    { name: "LEVEL", type: "Float", value: 0.5 },
]), "RUN on; STARTS -5; LEVEL 3.850000; STARTS -2; STARTS 4000000000; STARTS 12; LEVEL 0.500000");
console.log(`${lines.length} lines of an edge node's day keep to the rules`);
