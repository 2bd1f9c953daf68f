// What the build puts in the place of these names.

declare module "vkm_web" {
    const factory: import("../engine/engine.ts").ModuleFactory;
    export default factory;
}
declare module "vkm_wasm" {
    const packed: string; // gzip, base64
    export default packed;
}
declare module "vkm_worker" {
    const packed: string; // gzip, base64
    export default packed;
}
declare module "page-assets" {
    const assets: {
        worker: string; // gzip, base64, as the next
        wasm: string;
        fonts: { family: string; weight: string; style: string; base64: string }[];
    };
    export default assets;
}
